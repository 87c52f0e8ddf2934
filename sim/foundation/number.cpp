#include "sim/foundation/number.hpp"

#include <utility>

#include "sim/core/class_definition.hpp"
#include "sim/foundation/definitions.hpp"

namespace sim {

namespace {

double asReal(const NSNumber::Number& number) {
  return std::visit([](auto value) { return static_cast<double>(value); }, number);
}

Ref<NSNumber> numberWithBool(Class& cls, bool value) { return makeNumber(cls.process, value); }

// Whole numbers exactly, real ones with others as real ones.
struct SameValue {
  template <class A, class B>
  bool operator()(A a, B b) const {
    if constexpr (std::is_same_v<A, double> || std::is_same_v<B, double>)
      return static_cast<double>(a) == static_cast<double>(b);
    else
      return std::cmp_equal(+a, +b);
  }
};

}  // namespace

bool NSNumber::equals(const Object& other) const {
  const auto* number = dynamic_cast<const NSNumber*>(&other);
  return number && std::visit(SameValue{}, number->value, value);
}

bool NSNumber::boolValue() const { return asReal(value) != 0; }

Ref<NSNumber> makeNumber(Process& process, NSNumber::Number number) {
  return process.make<NSNumber>("NSNumber", number);
}

ClassDefinition defineNSNumber() {
  auto definition = ClassDefinition::of<NSNumber>("NSNumber", "NSObject", Home::everywhere());
  definition.classMethod("numberWithBool:", &numberWithBool);
  definition.method("boolValue", &NSNumber::boolValue);
  definition.code(detail::methodCode<NSNumber, Owned<NSNumber>>(
      "copy", [](NSNumber& self) { return Owned<NSNumber>{Ref<NSNumber>(&self)}; }));
  return definition;
}

}  // namespace sim
