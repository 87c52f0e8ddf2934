// What the device binary costs the processes it is loaded into. Stands in for a profiler on the
// phone; leaves out time, caches and what the platform does when it is called: instructions, calls
// and pages are counted.
#pragma once
#include <filesystem>
#include <ostream>

namespace sim::guest {

// The library, and what it is measured against: built in the same way from device/yardstick.
struct BenchImages {
  std::filesystem::path library;
  std::filesystem::path withoutRegistration;
  std::filesystem::path plainTweak;
  std::filesystem::path plainTweakWithMetadata;
};

// Prints Markdown tables: the cost of loading for an ordinary app beside that of a plain tweak,
// fix-ups, the cost for each kind of process, for each hook that SpringBoard gets, and of each hook
// when a call is passed through or taken over. Exact, the same at each run.
void runBench(const BenchImages& images, std::ostream& out);

}  // namespace sim::guest
