// Plays drawn scenarios with another program: the library on a real Objective-C runtime. Leaves out
// the lines that it cannot play, or plays otherwise by its own mistake.
#pragma once
#include <string>

#include "sim/search/shrink.hpp"

namespace sim::explore {

// Whether it plays that line, and as the simulator does.
bool programsPlay(const std::string& line);

// What `program FILE` prints for these lines; nothing if it cannot be run. Throws if no file for
// the lines can be made.
std::string playedByProgram(const std::string& program, const search::Lines& lines);

}  // namespace sim::explore
