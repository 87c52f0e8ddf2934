// Where arguments stand when ARM code calls or is called: the rules of both 32- and 64-bit devices,
// as a walk over the argument types. Leaves out structures and vectors.
#pragma once
#include <array>

#include "sim/core/value.hpp"
#include "sim/guest/slice.hpp"

namespace sim::guest {

// One piece of an argument: a whole register, or some bytes on the stack.
struct Place {
  enum class Where : std::uint8_t { Integer, Real, Stack } where = Where::Integer;
  unsigned index = 0;  // of the register, or bytes from the stack pointer
  unsigned size = 0;   // bytes

  friend bool operator==(const Place&, const Place&) = default;
};

// An argument is one place, or two words on 32-bit devices (low half first).
struct Places {
  std::array<Place, 2> place{};
  unsigned count = 1;
};

// Bytes that a value of that type takes in memory.
unsigned sizeOf(Slice slice, Kind kind);

class ArgumentLayout {
 public:
  explicit ArgumentLayout(Slice slice) : slice_(slice) {}

  Places next(Kind kind);
  // 64-bit devices pass everything from here on the stack, in 8-byte slots.
  void beginVariadic() { variadic_ = true; }
  // Stack that the arguments so far take, in bytes, aligned for a call.
  unsigned stackSize() const;

 private:
  Place onStack(unsigned size);
  Place word();

  Slice slice_;
  bool variadic_ = false;
  unsigned integers_ = 0;
  unsigned reals_ = 0;
  unsigned stack_ = 0;
};

}  // namespace sim::guest
