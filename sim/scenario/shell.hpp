// The scenario language, typed one command at a time, with help, undo and quit beside it. Nothing
// of a phone; leaves out expectations that are to be checked later.
#pragma once
#include <iosfwd>

#include "sim/scenario/runner.hpp"

namespace sim::scenario {

// Reads commands until the end of input, from the terminal with editing, history and completion or
// from a pipe. Mistakes are reported and end nothing.
Status runShell(LibraryLoader& loader, const RunOptions& options);

}  // namespace sim::scenario
