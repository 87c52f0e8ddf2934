// Methods and properties that this library adds to classes, and the rows of the tables that add
// them.
#pragma once
#include <iterator>

#include "platform/encoding.hpp"
#include "platform/selector.hpp"

namespace platform {

// One method to be added.
struct AddedMethod {
  const char* selectorName;
  void (*add)(Class cls, SEL name);
};

namespace detail {
template <class Function>
inline constexpr size_t kMethodArguments = 0;
template <class R, class... A>
inline constexpr size_t kMethodArguments<R(id, SEL, A...)> = sizeof...(A) + 1;
}  // namespace detail

// Adds Function under that selector. Does not compile unless it is a method implementation with as
// many arguments as the selector has colons. A method that the class has already stays.
template <auto* Function, Literal SelectorName>
requires(detail::kMethodArguments<std::remove_pointer_t<decltype(Function)>> ==
         kText<SelectorName>.count(':') + 1) consteval AddedMethod addedMethod() {
  return {kText<SelectorName>.text, [](Class cls, SEL name) {
            class_addMethod(cls, name, reinterpret_cast<IMP>(Function),
                            kEncoding<std::remove_pointer_t<decltype(Function)>>);
          }};
}

// Adds every row to `cls`; nothing where the class is missing.
template <size_t Count>
void addMethods(Class cls, const AddedMethod (&rows)[Count]) {
  if (!cls) return;
  for (const AddedMethod& row : rows) row.add(cls, sel_registerName(row.selectorName));
}

// Declares properties that hold blocks (copy, nonatomic) in `cls`; nothing where it is missing.
template <size_t Count>
void addCopiedBlockProperties(Class cls, const char* const (&names)[Count]) {
  if (!cls) return;
  static constexpr objc_property_attribute_t kAttributes[] = {{"T", "@?"}, {"C", ""}, {"N", ""}};
  for (const char* name : names) class_addProperty(cls, name, kAttributes, std::size(kAttributes));
}

// The class that holds a class's class methods. Null for null.
inline Class metaclassOf(Class cls) { return object_getClass(reinterpret_cast<id>(cls)); }

}  // namespace platform
