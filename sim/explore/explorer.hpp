// Searches for scenarios that break an invariant. Stands in for many phones in many hands; leaves
// out what cannot be said in the scenario language.
#pragma once
#include <filesystem>
#include <functional>
#include <memory>

#include "sim/core/library.hpp"
#include "sim/search/search.hpp"

namespace sim::explore {

// A way of running the library. The scenarios are drawn on the first one; on all others they must
// give the very same trace.
struct Build {
  std::string name;
  std::function<std::unique_ptr<LibraryLoader>()> make;  // none for a program
  std::string program{};  // that plays a scenario file and prints the trace (real_runtime.hpp)
};

// Draws a scenario from each number and plays it. A finding is a scenario shrunk to the shortest
// that still shows it, with what is wrong as a comment. All that are drawn are kept as NUMBER.txt
// in the folder `keep`, if one is named.
std::size_t explore(const std::vector<Build>& builds, const search::SearchOptions& options,
                    const std::filesystem::path& keep, std::ostream& out, std::ostream& progress);

}  // namespace sim::explore
