// The two architectures that a device binary holds. Leaves out armv7s, arm64e and the simulator's.
#pragma once
#include <cstdint>

namespace sim::guest {

enum class Slice : std::uint8_t { arm64, armv7 };

constexpr unsigned pointerSize(Slice slice) { return slice == Slice::arm64 ? 8 : 4; }

}  // namespace sim::guest
