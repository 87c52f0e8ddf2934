#include "sim/foundation/array.hpp"

#include <fmt/format.h>

#include <algorithm>

#include "sim/core/class_definition.hpp"
#include "sim/foundation/definitions.hpp"

namespace sim {

bool NSArray::equals(const Object& other) const {
  const auto* array = dynamic_cast<const NSArray*>(&other);
  if (!array || array->size() != size()) return false;
  for (std::size_t i = 0; i < size(); ++i)
    if (!at(i)->equals(*array->at(i))) return false;
  return true;
}

void NSArray::add(Object* element) {
  if (!element) throw Fault("-[NSMutableArray addObject:] with nil");
  elements_.push_back({element->address, retaining_ ? Ref<Object>(element) : Ref<Object>()});
  ++mutations_;
  if (mutationsCell_) process.library().write(mutationsCell_, &mutations_, 4);
}

void NSArray::remove(Object* element) {
  const auto matches = [&](const Element& candidate) {
    if (candidate.address == element->address) return true;
    return retaining_ && candidate.held->equals(*element);
  };
  if (std::erase_if(elements_, matches) == 0) return;
  ++mutations_;
  if (mutationsCell_) process.library().write(mutationsCell_, &mutations_, 4);
}

Object* NSArray::at(std::size_t index) const {
  if (index >= elements_.size())
    throw Fault(fmt::format("-[NSArray objectAtIndex:]: index {} beyond bounds [0, {})", index,
                            elements_.size()));
  return process.object(elements_[index].address);
}

bool NSArray::contains(const Object* wanted) const {
  for (std::size_t i = 0; wanted && i < size(); ++i)
    if (at(i)->equals(*wanted)) return true;
  return false;
}

// The state: {unsigned long state; id* items; unsigned long* mutations; unsigned long extra[5]}.
unsigned long NSArray::enumerate(Pointer state, Pointer buffer, unsigned long count) {
  Library& library = process.library();
  const unsigned word = library.pointerSize();
  if (!mutationsCell_) {
    mutationsCell_ = library.allocate(word);
    library.write(mutationsCell_, &mutations_, 4);
  }
  const Address done = library.readPointer(state.address);
  const Address batch = std::min<Address>(count, size() - std::min<Address>(done, size()));
  // Elements go out as they are: what was freed is found when it is used.
  for (Address i = 0; i < batch; ++i)
    library.writePointer(buffer.address + i * word, elements_[done + i].address);
  library.writePointer(state.address, done + batch);
  library.writePointer(state.address + word, buffer.address);
  library.writePointer(state.address + 2 * word, mutationsCell_);
  return static_cast<unsigned long>(batch);
}

Ref<NSArray> makeArray(Process& process, const std::vector<Ref<Object>>& elements) {
  auto array = process.make<NSArray>("NSArray");
  for (const auto& element : elements) array->add(element.get());
  return array;
}

namespace {

Ref<NSArray> arrayWithObject(Class& cls, Object* only) {
  return makeArray(cls.process, {Ref<Object>(only)});
}

Ref<NSArray> subarray(NSArray& self, unsigned long location, unsigned long length) {
  if (location > self.size() || length > self.size() - location)
    throw Fault("-[NSArray subarrayWithRange:] beyond bounds");
  auto part = self.process.make<NSArray>("NSArray");
  for (unsigned long i = 0; i < length; ++i) part->add(self.at(location + i));
  return part;
}

}  // namespace

ClassDefinition defineNSArray() {
  auto definition = ClassDefinition::of<NSArray>("NSArray", "NSObject", Home::everywhere());
  definition.classMethod("arrayWithObject:", &arrayWithObject);
  definition.code(detail::methodCode<NSArray, unsigned long>(
      "count", [](NSArray& self) { return static_cast<unsigned long>(self.size()); }));
  definition.code(detail::methodCode<NSArray, Object*, unsigned long>(
      "objectAtIndex:", [](NSArray& self, unsigned long index) { return self.at(index); }));
  definition.code(detail::methodCode<NSArray, bool, Object*>(
      "containsObject:", [](NSArray& self, Object* wanted) { return self.contains(wanted); }));
  // The range is a structure of two words, which every device passes as two words.
  NativeCode range = detail::methodCode<NSArray, Ref<NSArray>, unsigned long, unsigned long>(
      "subarrayWithRange:", subarray);
  definition.code(std::move(range));
  definition.method("countByEnumeratingWithState:objects:count:", &NSArray::enumerate);
  return definition;
}

ClassDefinition defineNSMutableArray() {
  auto definition =
      ClassDefinition::of<NSMutableArray>("NSMutableArray", "NSArray", Home::everywhere());
  definition.code(detail::methodCode<NSArray, void, Object*>(
      "addObject:", [](NSArray& self, Object* element) { self.add(element); }));
  definition.code(detail::methodCode<NSArray, void, Object*>("removeObject:",
                                                             [](NSArray& self, Object* element) {
                                                               if (element) self.remove(element);
                                                             }));
  return definition;
}

}  // namespace sim
