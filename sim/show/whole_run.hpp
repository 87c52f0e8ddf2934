// A scenario played from its beginning to its end, for what is printed of it. Nothing of a phone;
// leaves out scenarios that somebody is still writing (sim/show/played_device.hpp).
#pragma once
#include <nlohmann/json.hpp>

#include "sim/show/played_device.hpp"

namespace sim::show {

struct WholeRun {
  Lines lines;
  Json steps;  // an array; not all of them if a command could not be carried out
  scenario::Status status;
};
// On a fresh device. Expectations that failed and errors to `errors`, and the status, as for
// runScenario.
WholeRun playWhole(const std::string& file, const std::string& text, LibraryLoader& loader,
                   const scenario::RunOptions& options, std::ostream& errors);

}  // namespace sim::show
