// What the user does in the Settings app, drawn at random. Leaves out pages that are not the
// product's.
#pragma once
#include <string>
#include <vector>

#include "sim/search/random.hpp"

namespace sim::explore {

using search::Random;

std::string drawPageCommand(Random& random);
// The page is opened, something is set, something else happens, and something is set again.
std::vector<std::string> drawPageVisit(Random& random);

}  // namespace sim::explore
