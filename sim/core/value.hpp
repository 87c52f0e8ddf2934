// What crosses the border between the library and the platform: scalars of the C ABI. Stands in for
// the registers and stack words of a call; leaves out structures by value.
#pragma once
#include <algorithm>
#include <array>
#include <bit>
#include <cstdint>
#include <stdexcept>
#include <string>
#include <vector>

namespace sim {

// A pointer as the library sees it: an object, a class, a selector, code or memory. On 32-bit
// devices only the low half is used.
using Address = std::uint64_t;

// Types of arguments and results. `Long` and `ULong` are as wide as a pointer.
enum class Kind : std::uint8_t {
  Void,
  Bool,
  Int8,
  UInt8,
  Int32,
  UInt32,
  Long,
  ULong,
  Int64,
  UInt64,
  Float,
  Double,
  Object,
  Class,
  Selector,
  Pointer,
  CString,
};

// Types in order, as many as a function of the platform's may take. Held in place: every call
// copies some.
class KindList {
 public:
  constexpr KindList() = default;
  KindList(std::initializer_list<Kind> kinds) {
    for (const Kind kind : kinds) push_back(kind);
  }
  KindList(const std::vector<Kind>& kinds) {  // NOLINT(google-explicit-constructor)
    for (const Kind kind : kinds) push_back(kind);
  }
  void push_back(Kind kind) {
    if (count_ == kMost) throw std::length_error("a function with too many arguments");
    all_[count_++] = kind;
  }
  void pushFront(Kind kind) {
    push_back(kind);
    std::rotate(all_.begin(), all_.begin() + count_ - 1, all_.begin() + count_);
  }
  const Kind* begin() const { return all_.data(); }
  const Kind* end() const { return all_.data() + count_; }
  std::size_t size() const { return count_; }
  Kind at(std::size_t index) const { return all_.at(index); }
  bool operator==(const KindList& other) const {
    return std::equal(begin(), end(), other.begin(), other.end());
  }

 private:
  static constexpr std::size_t kMost = 14;
  std::array<Kind, kMost> all_{};
  std::uint8_t count_ = 0;
};

// The result and arguments of a function; for a method the two hidden arguments (receiver and
// selector) are left out.
struct Signature {
  Kind result = Kind::Void;
  KindList arguments{};
  bool variadic = false;

  // Reads a runtime type encoding such as "v@:@q" (offsets allowed). Throws std::invalid_argument.
  static Signature fromEncoding(const std::string& encoding);
};

// One argument or result: integers sign- or zero-extended to 64 bits, floats as doubles.
struct Value {
  Kind kind = Kind::Void;
  std::uint64_t bits = 0;

  static Value none() { return {}; }
  static Value of(Kind kind, std::uint64_t bits) { return {kind, bits}; }
  static Value boolean(bool value) { return {Kind::Bool, value ? 1u : 0u}; }
  static Value integer(Kind kind, std::int64_t value) {
    return {kind, static_cast<std::uint64_t>(value)};
  }
  static Value real(double value) { return {Kind::Double, std::bit_cast<std::uint64_t>(value)}; }
  static Value object(Address address) { return {Kind::Object, address}; }
  static Value nil() { return object(0); }

  bool asBool() const { return (bits & 0xff) != 0; }
  std::int64_t asInteger() const { return static_cast<std::int64_t>(bits); }
  double asReal() const { return std::bit_cast<double>(bits); }
  bool isReal() const { return kind == Kind::Float || kind == Kind::Double; }
};

// The registered selector; its address is what the library holds.
struct Selector {
  Address address = 0;
};
// An uninterpreted pointer of the library's.
struct Pointer {
  Address address = 0;
};

// A mistake that would end the process on the phone. Caught where the process was entered.
class Fault : public std::runtime_error {
 public:
  explicit Fault(const std::string& reason) : std::runtime_error(reason) {}
};

}  // namespace sim
