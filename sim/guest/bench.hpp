// What the device binary costs the processes it is loaded into.
#pragma once
#include <filesystem>
#include <ostream>

namespace sim::guest {

// Prints Markdown tables: for both slices and each kind of process the cost of loading, and for
// each hook the cost of passing a call through and of taking it over. Exact, the same at each run.
void runBench(const std::filesystem::path& image, std::ostream& out);

}  // namespace sim::guest
