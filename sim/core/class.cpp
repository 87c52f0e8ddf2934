#include "sim/core/class.hpp"

#include <algorithm>

#include "sim/core/process.hpp"

namespace sim {

Object* Invocation::object(std::size_t index) const {
  return process.object(arguments.at(index).bits);
}

std::string Invocation::text(std::size_t index) const {
  return process.library().readText(arguments.at(index).bits);
}

Object* Invocation::nextVariadicObject() const {
  return rest ? process.object(rest->next(Kind::Object).bits) : nullptr;
}

Method* Class::own(const std::string& selector) {
  const auto found = methods.find(selector);
  return found == methods.end() ? nullptr : &found->second;
}

Method* Class::find(const std::string& selector) {
  for (Class* cls = this; cls; cls = cls->superclass)
    if (Method* method = cls->own(selector))
      return method;
    else if (!cls->denied.empty() && cls->denied.contains(selector))
      return nullptr;
  return nullptr;
}

void Class::deny(const std::string& selector) {
  for (Class* cls : {this, isa}) {
    cls->methods.erase(selector);
    cls->denied.insert(selector);
  }
}

bool Class::inherits(const Class& ancestor) const {
  for (const Class* cls = this; cls; cls = cls->superclass)
    if (cls == &ancestor) return true;
  return false;
}

std::string Library::readText(Address from) const {
  std::string text;
  for (char c = 0;; text += c) {
    read(from + text.size(), &c, 1);
    if (c == 0) return text;
  }
}

Address Library::readPointer(Address from) const {
  Address value = 0;
  read(from, &value, pointerSize());
  return value;
}

void Library::writePointer(Address to, Address value) { write(to, &value, pointerSize()); }

std::size_t Class::instanceSize() const {
  const std::size_t inherited = superclass ? superclass->instanceSize() : 0;
  if (variables.empty()) return inherited;
  return (inherited ? inherited : 1) + variables.size();
}

std::optional<std::size_t> Class::variableIndex(const std::string& wanted) const {
  const auto found = std::ranges::find(variables, wanted);
  if (found == variables.end())
    return superclass ? superclass->variableIndex(wanted) : std::nullopt;
  return instanceSize() - variables.size() + static_cast<std::size_t>(found - variables.begin());
}

}  // namespace sim
