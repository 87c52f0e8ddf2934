// Settings files that nobody should have, and what is done on a device that has one. Stands in for
// damaged storage and ill will; leaves out files that change while they are read.
#pragma once
#include <string>

#include "sim/explore/playback.hpp"
#include "sim/search/random.hpp"

namespace sim::explore {

// SpringBoard, the players and an ordinary app start with a settings file of these bytes, Play is
// pressed everywhere, the greeting is answered. Then the settings page opens over it: everything
// there is touched, with the file put back in between.
Lines scenarioOn(const std::string& settings);

// A property list with some of its keys given values of other types, nested, huge or none. What is
// no property list is replaced by one.
std::string mutatedSettings(const std::string& settings, search::Random& random);

}  // namespace sim::explore
