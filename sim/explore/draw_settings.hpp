// Draws settings files of every kind that a property list can be. Stands in for other writers of
// the file; leaves out files that are cut off, which sim/explore/draw.hpp makes of them.
#pragma once
#include "sim/foundation/plist_file.hpp"
#include "sim/search/random.hpp"

namespace sim::explore {

// A value of any type; containers nest a few levels.
PlistNode drawValue(search::Random& random);
// Mostly a dictionary with the product's keys, some of them as they should be.
PlistNode drawSettings(search::Random& random);
// XML or binary.
std::string asFile(const PlistNode& root, search::Random& random);
// These bytes as the argument of `prefs-file`.
std::string asArgument(const std::string& file);

}  // namespace sim::explore
