// NSNumber: a truth value, a whole number (unsigned if it is beyond the signed ones), or a real
// one. Leaves out arithmetic, formats and widths below 64 bits.
#pragma once
#include <variant>

#include "sim/core/process.hpp"

namespace sim {

class NSNumber final : public Object {
 public:
  using Number = std::variant<bool, std::int64_t, std::uint64_t, double>;

  NSNumber(Process& process, Number number) : Object(process), value(number) {}
  bool equals(const Object& other) const override;
  bool boolValue() const;  // anything but zero

  const Number value;
};

Ref<NSNumber> makeNumber(Process& process, NSNumber::Number number);

}  // namespace sim
