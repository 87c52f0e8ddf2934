#include "sim/guest/guest_call.hpp"

#include <fmt/format.h>

namespace sim::guest {

namespace {

// What callers need not clear is filled with this, so that code that reads too much is found out.
constexpr std::uint64_t kUnpromised = 0xa5a5a5a500000000;

bool isReal(Kind kind) { return kind == Kind::Float || kind == Kind::Double; }

// The bits of a value as its type has them in memory.
std::uint64_t toBits(const Value& value) {
  if (value.kind == Kind::Float)
    return std::bit_cast<std::uint32_t>(static_cast<float>(value.asReal()));
  return value.bits;
}

Value fromBits(Slice slice, Kind kind, std::uint64_t bits) {
  const auto byte = static_cast<std::uint8_t>(bits);
  switch (kind) {
    case Kind::Bool:
      if (byte > 1) throw Fault(fmt::format("a BOOL that is neither YES nor NO but {}", byte));
      return Value::boolean(byte != 0);
    case Kind::Int8:
      return Value::integer(kind, static_cast<std::int8_t>(bits));
    case Kind::UInt8:
      return Value::of(kind, byte);
    case Kind::Int32:
      return Value::integer(kind, static_cast<std::int32_t>(bits));
    case Kind::UInt32:
      return Value::of(kind, static_cast<std::uint32_t>(bits));
    case Kind::Float: {
      const auto value = std::bit_cast<float>(static_cast<std::uint32_t>(bits));
      return {kind, std::bit_cast<std::uint64_t>(static_cast<double>(value))};
    }
    default:
      break;
  }
  if (sizeOf(slice, kind) == 4) {  // a pointer or long of a 32-bit process
    if (kind == Kind::Long) return Value::integer(kind, static_cast<std::int32_t>(bits));
    return Value::of(kind, static_cast<std::uint32_t>(bits));
  }
  return {kind, bits};
}

// A register holding a value narrower than itself: extended to 32 bits as promised, no further.
std::uint64_t asRegister(Slice slice, const Value& value) {
  const std::uint64_t bits = toBits(value);
  if (slice == Slice::armv7 || sizeOf(slice, value.kind) == 8) return bits;
  return kUnpromised | static_cast<std::uint32_t>(bits);
}

}  // namespace

std::uint64_t GuestArguments::fetch(const Place& place) const {
  switch (place.where) {
    case Place::Where::Integer:
      return cpu_.integer(place.index);
    case Place::Where::Real:
      return cpu_.real(place.index);
    case Place::Where::Stack: {
      std::uint64_t bits = 0;
      memory_.read(cpu_.stackPointer() + place.index, &bits, place.size);
      return bits;
    }
  }
  return 0;
}

Value GuestArguments::next(Kind kind) {
  const Places places = layout_.next(kind);
  std::uint64_t bits = fetch(places.place[0]);
  if (places.count == 2) bits = static_cast<std::uint32_t>(bits) | fetch(places.place[1]) << 32;
  return fromBits(slice_, kind, bits);
}

void placeArguments(Slice slice, Cpu& cpu, GuestMemory& memory,
                    const std::vector<Value>& arguments) {
  ArgumentLayout measure(slice);
  for (const Value& value : arguments) measure.next(value.kind);
  const Address stack = cpu.stackPointer() - measure.stackSize();
  cpu.setStackPointer(stack);
  ArgumentLayout layout(slice);
  for (const Value& value : arguments) {
    const Places places = layout.next(value.kind);
    const std::uint64_t bits = toBits(value);
    for (unsigned i = 0; i < places.count; ++i) {
      const Place& place = places.place[i];
      const std::uint64_t part = i == 0 ? bits : bits >> 32;
      if (place.where == Place::Where::Integer)
        cpu.setInteger(place.index, places.count == 2 ? part : asRegister(slice, value));
      else if (place.where == Place::Where::Real)
        cpu.setReal(place.index, part);
      else
        memory.write(stack + place.index, &part, place.size);
    }
  }
}

Value fetchResult(Slice slice, const Cpu& cpu, Kind kind) {
  if (kind == Kind::Void) return Value::none();
  std::uint64_t bits = 0;
  if (slice == Slice::arm64)
    bits = isReal(kind) ? cpu.real(0) : cpu.integer(0);
  else
    bits = cpu.integer(0) | (sizeOf(slice, kind) == 8 ? cpu.integer(1) << 32 : 0);
  return fromBits(slice, kind, bits);
}

void placeResult(Slice slice, Cpu& cpu, const Value& value) {
  if (value.kind == Kind::Void) {  // also what a message to nothing answers
    for (unsigned i = 0; i < (slice == Slice::arm64 ? 2u : 4u); ++i) cpu.setInteger(i, 0);
    if (slice == Slice::arm64) cpu.setReal(0, 0);
  } else if (slice == Slice::arm64 && isReal(value.kind)) {
    cpu.setReal(0, toBits(value));
  } else {
    cpu.setInteger(0, asRegister(slice, value));
    if (slice == Slice::armv7) cpu.setInteger(1, toBits(value) >> 32);
  }
}

}  // namespace sim::guest
