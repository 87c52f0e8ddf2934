#include "sim/guest/calling_convention.hpp"

namespace sim::guest {

unsigned sizeOf(Slice slice, Kind kind) {
  switch (kind) {
    case Kind::Void:
      return 0;
    case Kind::Bool:
    case Kind::Int8:
    case Kind::UInt8:
      return 1;
    case Kind::Int32:
    case Kind::UInt32:
    case Kind::Float:
      return 4;
    case Kind::Int64:
    case Kind::UInt64:
    case Kind::Double:
      return 8;
    case Kind::Long:
    case Kind::ULong:
    case Kind::Object:
    case Kind::Class:
    case Kind::Selector:
    case Kind::Pointer:
    case Kind::CString:
      return pointerSize(slice);
  }
  return 0;
}

Place ArgumentLayout::onStack(unsigned size) {
  stack_ = (stack_ + size - 1) / size * size;
  const Place place{Place::Where::Stack, stack_, size};
  stack_ += size;
  return place;
}

// The next 32-bit argument word: four registers, then the stack. Never aligned to more than a word.
Place ArgumentLayout::word() {
  if (integers_ < 4) return {Place::Where::Integer, integers_++, 4};
  return onStack(4);
}

Places ArgumentLayout::next(Kind kind) {
  const unsigned size = sizeOf(slice_, kind);
  if (slice_ == Slice::armv7) {  // floating point goes in integer registers too
    Places places{{word(), Place{}}, 1};
    if (size == 8) places = {{places.place[0], word()}, 2};
    return places;
  }
  if (variadic_) return {{onStack(8), Place{}}, 1};
  const bool real = kind == Kind::Float || kind == Kind::Double;
  if (real && reals_ < 8) return {{Place{Place::Where::Real, reals_++, size}, Place{}}, 1};
  if (!real && integers_ < 8)
    return {{Place{Place::Where::Integer, integers_++, size}, Place{}}, 1};
  return {{onStack(size), Place{}}, 1};
}

unsigned ArgumentLayout::stackSize() const {
  const unsigned alignment = slice_ == Slice::arm64 ? 16 : 8;
  return (stack_ + alignment - 1) / alignment * alignment;
}

}  // namespace sim::guest
