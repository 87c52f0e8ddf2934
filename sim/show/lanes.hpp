// A run as lanes of text: a column for each process, time downwards. Nothing of a phone; leaves out
// what stands behind an effect, which the page shows (show/).
#pragma once
#include <iosfwd>
#include <string>

#include "sim/scenario/runner.hpp"

namespace sim::show {

// Plays a whole scenario on a fresh device and prints its lanes, no wider than `columns` unless
// there are too many processes for that. Expectations that failed and errors to `errors`, and what
// is returned, as for runScenario.
scenario::Status printLanes(const std::string& file, const std::string& text, LibraryLoader& loader,
                            const scenario::RunOptions& options, std::size_t columns,
                            std::ostream& out, std::ostream& errors);

}  // namespace sim::show
