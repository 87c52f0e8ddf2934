// A device for another program, which writes what is to be played and reads what happened, a JSON
// object a line. Nothing of a phone; docs/show.md has the language. Leaves out time limits, which
// are the other program's.
#pragma once
#include <filesystem>
#include <iosfwd>

#include "sim/core/library.hpp"

namespace sim::show {

// Serves until the end of `in`. A line that is no request is answered with an error and ends
// nothing.
void serveDevice(LibraryLoader& loader, const std::filesystem::path& settingsPage, std::istream& in,
                 std::ostream& out);

}  // namespace sim::show
