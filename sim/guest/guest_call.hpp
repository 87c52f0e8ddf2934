// Arguments and results between the world and ARM code. Stands in for the instructions that a
// compiler writes around a call; leaves out results that are structures.
#pragma once
#include "sim/core/class.hpp"
#include "sim/guest/calling_convention.hpp"
#include "sim/guest/cpu.hpp"

namespace sim::guest {

// The arguments of a call that the guest makes into the platform.
class GuestArguments final : public ArgumentSource {
 public:
  GuestArguments(Slice slice, const Cpu& cpu, const GuestMemory& memory)
      : slice_(slice), cpu_(cpu), memory_(memory), layout_(slice) {}
  Value next(Kind kind) override;
  void beginVariadic() override { layout_.beginVariadic(); }

 private:
  std::uint64_t fetch(const Place& place) const;

  Slice slice_;
  const Cpu& cpu_;
  const GuestMemory& memory_;
  ArgumentLayout layout_;
};

// Lays arguments out for a call into the guest; moves the stack pointer down for those on the
// stack.
void placeArguments(Slice slice, Cpu& cpu, GuestMemory& memory,
                    const std::vector<Value>& arguments);

// The result of a guest function that has just returned.
Value fetchResult(Slice slice, const Cpu& cpu, Kind kind);
// The result of a platform function, for the guest.
void placeResult(Slice slice, Cpu& cpu, const Value& value);

}  // namespace sim::guest
