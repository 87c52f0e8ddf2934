// NSPredicate: whether a text holds another one, small and capital letters alike. Leaves out every
// other format, and accents, which the platform takes no notice of.
#include <algorithm>

#include "sim/core/class_definition.hpp"
#include "sim/foundation/definitions.hpp"
#include "sim/foundation/string.hpp"

namespace sim {

namespace {

std::string small(std::string text) {
  std::ranges::transform(text, text.begin(), [](unsigned char c) { return std::tolower(c); });
  return text;
}

class NSPredicate final : public Object {
 public:
  using Object::Object;
  bool evaluate(Object* object) {
    const auto* text = dynamic_cast<NSString*>(object);
    return text && small(text->text).find(part) != std::string::npos;
  }
  std::string part;
};

Value predicateWithFormat(Invocation& invocation) {
  const auto* format = dynamic_cast<NSString*>(invocation.object(0));
  if (!format || format->text != "SELF CONTAINS[cd] %@")
    throw Fault("a predicate that the simulated platform cannot read");
  const auto* part = dynamic_cast<NSString*>(invocation.nextVariadicObject());
  if (!part) throw Fault("a predicate with nil");
  auto made = invocation.process.make<NSPredicate>("NSPredicate");
  made->part = small(part->text);
  return Returning<Ref<NSPredicate>>::settle(invocation, made);
}

}  // namespace

ClassDefinition defineNSPredicate() {
  auto definition = ClassDefinition::of<NSPredicate>("NSPredicate", "NSObject",
                                                     Home::app("com.apple.Preferences"));
  definition.mainThreadOnly(false);
  definition.code(
      {"predicateWithFormat:", {Kind::Object, {Kind::Object}, true}, predicateWithFormat}, true);
  definition.method("evaluateWithObject:", &NSPredicate::evaluate);
  return definition;
}

}  // namespace sim
