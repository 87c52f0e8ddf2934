// Draws commands of the scenario language at random, sensible or not.
#pragma once
#include "sim/explore/random.hpp"

namespace sim::explore {

// What every drawn scenario begins with: apps, a version, settings, SpringBoard.
std::vector<std::string> drawBeginning(Random& random);

// One more command. It is of the language, but the device may be in no state for it.
std::string drawCommand(Random& random);

// A settings file as somebody else may have left it, as the arguments of `prefs-file`: XML or
// binary, values of every type under the product's keys and others, whole or cut off.
std::string drawSettingsFile(Random& random);

}  // namespace sim::explore
