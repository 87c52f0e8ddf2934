// One page that shows a run, without a server: for a bug report, or beside a build's log. Nothing
// of a phone; leaves out the page itself, which lies in show/.
#pragma once
#include <filesystem>
#include <iosfwd>
#include <string>

#include "sim/scenario/runner.hpp"

namespace sim::show {

// Plays a whole scenario on a fresh device and prints the page of `folder` with its style, its
// modules and what happened in it. `build` is what the page calls the library's build. Expectations
// that failed and errors to `errors`, and what is returned, as for runScenario. Throws
// std::runtime_error, with its name, if a file of the page is missing.
scenario::Status printStaticPage(const std::filesystem::path& folder, const std::string& build,
                                 const std::string& file, const std::string& text,
                                 LibraryLoader& loader, const scenario::RunOptions& options,
                                 std::ostream& out, std::ostream& errors);

}  // namespace sim::show
