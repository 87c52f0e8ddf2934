#include "sim/settings/specifier.hpp"

#include "sim/foundation/number.hpp"
#include "sim/settings/definitions.hpp"

namespace sim {

Object* PSSpecifier::property(const std::string& key) const {
  const auto found = properties_.find(key);
  return found == properties_.end() ? nullptr : found->second.get();
}

void PSSpecifier::setProperty(const std::string& key, Object* value) {
  if (value) properties_[key] = Ref<Object>(value);
}

std::string PSSpecifier::text(const std::string& key) const {
  return textOf(dynamic_cast<NSString*>(property(key)));
}

bool PSSpecifier::enabled() const {
  const auto* number = dynamic_cast<NSNumber*>(property("enabled"));
  return !number || number->boolValue();
}

Object* PSSpecifier::get() {
  Object* asked = process.object(target);
  if (!asked || getter.empty()) return nullptr;
  return process.object(process.send(asked, getter, {Value::object(address)}).bits);
}

void PSSpecifier::set(Object* value) {
  Object* told = process.object(target);
  if (told && !setter.empty())
    process.send(told, setter, {Value::object(value->address), Value::object(address)});
}

void PSSpecifier::performButton() {
  Object* told = process.object(target);
  if (told && !buttonAction.empty()) process.send(told, buttonAction, {Value::object(address)});
}

Ref<PSSpecifier> makeSpecifier(Process& process, Cell cell, const std::string& name) {
  auto made = process.make<PSSpecifier>("PSSpecifier");
  made->cell = cell;
  made->name = makeString(process, name);
  return made;
}

namespace {

std::string nameOf(Process& process, Selector selector) {
  return selector.address ? process.selectorName(selector.address) : std::string();
}

Ref<PSSpecifier> row(Class& cls, NSString* name, Object* target, Selector set, Selector get,
                     Class* detail, long cell, Class*) {
  auto made = makeSpecifier(cls.process, static_cast<Cell>(cell), textOf(name));
  made->target = target ? target->address : 0;
  made->setter = nameOf(cls.process, set);
  made->getter = nameOf(cls.process, get);
  made->detail = detail;
  return made;
}

Ref<PSSpecifier> group(Class& cls, NSString* name) {
  return makeSpecifier(cls.process, Cell::Group, textOf(name));
}

}  // namespace

ClassDefinition definePSSpecifier() {
  auto definition = ClassDefinition::of<PSSpecifier>("PSSpecifier", "NSObject",
                                                     Home::app("com.apple.Preferences"));
  definition.classMethod("preferenceSpecifierNamed:target:set:get:detail:cell:edit:", &row);
  definition.classMethod("groupSpecifierWithName:", &group);
  const auto add = [&](NativeCode code) { definition.code(std::move(code)); };
  add(detail::methodCode<PSSpecifier, NSString*>(
      "name", [](PSSpecifier& self) { return self.name.get(); }));
  add(detail::methodCode<PSSpecifier, Object*, NSString*>(
      "propertyForKey:",
      [](PSSpecifier& self, NSString* key) { return self.property(textOf(key)); }));
  add(detail::methodCode<PSSpecifier, void, Object*, NSString*>(
      "setProperty:forKey:", [](PSSpecifier& self, Object* value, NSString* key) {
        self.setProperty(textOf(key), value);
      }));
  add(detail::methodCode<PSSpecifier, void, Selector>(
      "setButtonAction:", [](PSSpecifier& self, Selector action) {
        self.buttonAction = nameOf(self.process, action);
      }));
  return definition;
}

}  // namespace sim
