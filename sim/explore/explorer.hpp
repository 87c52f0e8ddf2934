// Searches for scenarios that break an invariant.
#pragma once
#include <cstdint>
#include <functional>
#include <memory>
#include <ostream>

#include "sim/core/library.hpp"

namespace sim::explore {

struct ExploreOptions {
  std::uint64_t seed = 1;    // of the first scenario; the next ones count up from it
  std::uint64_t count = 1000;
  unsigned jobs = 1;         // processes at work side by side
  double minutes = 0;        // stop after so long, however many were tried; 0: never
};

// A way of running the library. The scenarios are drawn on the first one; on all others they must
// give the very same trace.
struct Build {
  std::string name;
  std::function<std::unique_ptr<LibraryLoader>()> make;
};

// Findings go to `out`, each as a scenario shrunk to the shortest that still shows it, with what
// is wrong as a comment; progress goes to `progress`, the figures in the end too. Each job is a
// process of its own, so that not even a crash of the whole program ends the search. Returns the
// number of findings.
std::size_t explore(const std::vector<Build>& builds, const ExploreOptions& options,
                    std::ostream& out, std::ostream& progress);

}  // namespace sim::explore
