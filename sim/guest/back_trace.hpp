// What a fault in the guest looked like: registers and the functions that led there. Stands in for
// a crash log; leaves out other threads and the platform's own frames.
#pragma once
#include <string>

#include "sim/guest/cpu.hpp"
#include "sim/guest/loaded_image.hpp"

namespace sim::guest {

// Several lines, ready to be printed.
std::string backTrace(Slice slice, const Cpu& cpu, const GuestMemory& memory,
                      const LoadedImage& image);

}  // namespace sim::guest
