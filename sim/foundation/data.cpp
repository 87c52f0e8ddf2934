#include "sim/foundation/data.hpp"

#include "sim/core/class_definition.hpp"
#include "sim/foundation/definitions.hpp"

namespace sim {

bool NSData::equals(const Object& other) const {
  const auto* data = dynamic_cast<const NSData*>(&other);
  return data && data->bytes == bytes;
}

bool NSDate::equals(const Object& other) const {
  const auto* date = dynamic_cast<const NSDate*>(&other);
  return date && toXml(date->node.get()) == toXml(node.get());
}

Ref<NSData> makeData(Process& process, std::string bytes) {
  return process.make<NSData>("NSData", std::move(bytes));
}

Ref<NSDate> makeDate(Process& process, plist_t date) {
  return process.make<NSDate>("NSDate", date);
}

ClassDefinition defineNSData() {
  auto definition = ClassDefinition::of<NSData>("NSData", "NSObject", Home::everywhere());
  // It has a length as texts do, which is why nobody may take it for one by that.
  definition.code(detail::methodCode<NSData, unsigned long>(
      "length", [](NSData& self) { return static_cast<unsigned long>(self.bytes.size()); }));
  return definition;
}

ClassDefinition defineNSDate() {
  return ClassDefinition::of<NSDate>("NSDate", "NSObject", Home::everywhere());
}

}  // namespace sim
