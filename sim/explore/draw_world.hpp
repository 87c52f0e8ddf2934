// What of the platform is there: frameworks, selectors and methods, drawn at random. Stands in for
// the releases and the broken installations that there are; leaves out classes and methods that the
// library neither hooks nor asks for.
#pragma once
#include <string>
#include <vector>

#include "sim/search/random.hpp"

namespace sim::explore {

using search::Random;

std::string drawFramework(Random& random);
std::string drawSelectors(Random& random);
// A method that the product hooks, or asks for before it sends it.
std::string drawMissingMethod(Random& random);
// The system is updated, and starts again.
std::vector<std::string> drawUpdate(Random& random);

}  // namespace sim::explore
