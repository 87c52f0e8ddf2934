// Draws commands of the scenario language at random, sensible or not. Stands in for users and
// phones that nobody has thought of; leaves out title views that end in the middle of a title's
// update, which on a phone too would end the process by the platform's own rule.
#pragma once
#include "sim/search/random.hpp"

namespace sim::explore {

using search::Random;

// What every drawn scenario begins with: apps, a version, settings, SpringBoard.
std::vector<std::string> drawBeginning(Random& random);

// One more command, or a few that belong together. They are of the language, but the device may be
// in no state for them.
std::vector<std::string> drawCommands(Random& random);

// A settings file as somebody else may have left it, as the arguments of `prefs-file`: XML or
// binary, values of every type under the product's keys and others, whole or cut off.
std::string drawSettingsFile(Random& random);

}  // namespace sim::explore
