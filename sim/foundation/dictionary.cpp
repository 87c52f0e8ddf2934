#include "sim/foundation/dictionary.hpp"

#include <algorithm>

#include "sim/core/class_definition.hpp"
#include "sim/core/device.hpp"
#include "sim/foundation/array.hpp"
#include "sim/foundation/definitions.hpp"
#include "sim/foundation/property_list.hpp"
#include "sim/foundation/string.hpp"

namespace sim {

bool NSDictionary::equals(const Object& other) const {
  const auto* dictionary = dynamic_cast<const NSDictionary*>(&other);
  if (!dictionary || dictionary->entries_.size() != entries_.size()) return false;
  return std::ranges::all_of(entries_, [&](const Entry& entry) {
    const Object* value = dictionary->find(entry.key);
    return value && value->equals(*entry.value);
  });
}

Object* NSDictionary::find(const std::string& key) const {
  const auto found = std::ranges::find(entries_, key, &Entry::key);
  return found == entries_.end() ? nullptr : found->value.get();
}

void NSDictionary::set(const std::string& key, Object* value) {
  const auto found = std::ranges::find(entries_, key, &Entry::key);
  if (!value) {
    if (found != entries_.end()) entries_.erase(found);
  } else if (found != entries_.end()) {
    found->value = Ref<Object>(value);
  } else {
    entries_.push_back({key, Ref<Object>(value)});
  }
}

Ref<NSDictionary> makeDictionary(Process& process) {
  return process.make<NSDictionary>("NSDictionary");
}

namespace {

Object* objectForKey(NSDictionary& self, NSString* key) {
  return key ? self.find(key->text) : nullptr;
}

unsigned long count(NSDictionary& self) { return self.entries().size(); }

Ref<NSArray> allKeys(NSDictionary& self) {
  std::vector<Ref<Object>> keys;
  for (const auto& entry : self.entries()) keys.emplace_back(makeString(self.process, entry.key));
  return makeArray(self.process, keys);
}

Owned<NSMutableDictionary> mutableCopy(NSDictionary& self) {
  auto copy = self.process.make<NSMutableDictionary>("NSMutableDictionary");
  for (const auto& entry : self.entries()) copy->set(entry.key, entry.value.get());
  return {copy};
}

// A nil among the values ends the list, as it does on the phone.
Value dictionaryWithObjectsAndKeys(Invocation& invocation) {
  auto dictionary = makeDictionary(invocation.process);
  for (Object* value = invocation.object(0); value; value = invocation.nextVariadicObject()) {
    auto* key = dynamic_cast<NSString*>(invocation.nextVariadicObject());
    if (!key) throw Fault("+[NSDictionary dictionaryWithObjectsAndKeys:] with a nil key");
    dictionary->set(key->text, value);
  }
  return Returning<Ref<NSDictionary>>::settle(invocation, dictionary);
}

// An initialiser that fails gives its receiver up and answers nil.
Object* initWithContentsOfFile(NSMutableDictionary& self, NSString* path) {
  const auto contents = path ? readPropertyList(self.process, path->text) : Ref<NSDictionary>();
  if (!contents) {
    self.libraryRelease();
    return nullptr;
  }
  for (const auto& entry : contents->entries()) self.set(entry.key, entry.value.get());
  return &self;
}

bool writeToFile(NSDictionary& self, NSString* path, bool) {
  return path && writePropertyList(self, path->text);
}

void setValue(NSMutableDictionary& self, Object* value, NSString* key) {
  if (!key) throw Fault("-[NSMutableDictionary setValue:forKey:] with a nil key");
  self.set(key->text, value);
}

void setObject(NSMutableDictionary& self, Object* value, NSString* key) {
  if (!value) throw Fault("-[NSMutableDictionary setObject:forKey:] with nil");
  setValue(self, value, key);
}

}  // namespace

ClassDefinition defineNSDictionary() {
  auto definition =
      ClassDefinition::of<NSDictionary>("NSDictionary", "NSObject", Home::everywhere());
  const auto add = [&](NativeCode code) { definition.code(std::move(code)); };
  add(detail::methodCode<NSDictionary, Object*, NSString*>("objectForKey:", objectForKey));
  add(detail::methodCode<NSDictionary, Object*, NSString*>("objectForKeyedSubscript:",
                                                           objectForKey));
  add(detail::methodCode<NSDictionary, unsigned long>("count", count));
  add(detail::methodCode<NSDictionary, Ref<NSArray>>("allKeys", allKeys));
  add(detail::methodCode<NSDictionary, Owned<NSMutableDictionary>>("mutableCopy", mutableCopy));
  definition.code({"dictionaryWithObjectsAndKeys:",
                   {Kind::Object, {Kind::Object}, true},
                   dictionaryWithObjectsAndKeys},
                  true);
  return definition;
}

ClassDefinition defineNSMutableDictionary() {
  auto definition = ClassDefinition::of<NSMutableDictionary>("NSMutableDictionary", "NSDictionary",
                                                             Home::everywhere());
  definition
      .code(detail::methodCode<NSMutableDictionary, Object*, NSString*>("initWithContentsOfFile:",
                                                                        initWithContentsOfFile))
      .effect();
  definition
      .code(detail::methodCode<NSDictionary, bool, NSString*, bool>("writeToFile:atomically:",
                                                                    writeToFile))
      .effect();
  definition.code(detail::methodCode<NSMutableDictionary, void, Object*, NSString*>(
      "setValue:forKey:", setValue));
  definition.code(detail::methodCode<NSMutableDictionary, void, Object*, NSString*>(
      "setObject:forKey:", setObject));
  return definition;
}

}  // namespace sim
