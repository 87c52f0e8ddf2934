// Plays drawn scenarios with another program: the library on a real Objective-C runtime.
#pragma once
#include <optional>
#include <string>

#include "sim/search/shrink.hpp"

namespace sim::explore {

// What `program FILE` prints for these lines; nothing if they hold what it is known to do
// otherwise. A program that cannot be run prints nothing. Throws if no file for the lines can be
// made.
std::optional<std::string> playedByProgram(const std::string& program, const search::Lines& lines);

}  // namespace sim::explore
