// What may come next on a line that is being typed. Nothing of a phone; leaves out the line editor
// (sim/scenario/shell.hpp).
#pragma once
#include <string>
#include <vector>

#include "sim/core/device.hpp"

namespace sim::scenario {

// The words that may stand behind `before`, all of a line up to there: commands at its beginning,
// then, by what the reference says of the command, apps that are installed, the words of choices,
// and the labels of the settings page if it is open, in quotes. The device is borrowed.
std::vector<std::string> completions(const std::string& before, Device& device);

}  // namespace sim::scenario
