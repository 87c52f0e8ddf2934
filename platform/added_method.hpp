// Methods and properties that this library adds to classes, and the rows of the tables that add
// them. Stands in for what another compiler writes into an image as a category; leaves out
// protocols, instance variables and properties of other kinds than copied blocks.
#pragma once
#include <iterator>

#include "platform/encoding.hpp"
#include "platform/selector.hpp"
#include "platform/unrolled.hpp"

namespace platform {

// One method to be added.
struct AddedMethod {
  const char* selectorName;
  void (*add)(Class cls, SEL name, decltype(&class_addMethod) addMethod);
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
  return {kText<SelectorName>.text, [](Class cls, SEL name, decltype(&class_addMethod) addMethod) {
            addMethod(cls, name, reinterpret_cast<IMP>(Function),
                      kEncoding<std::remove_pointer_t<decltype(Function)>>);
          }};
}

// Adds every row of a table to `cls`, which must be there.
template <const auto& Rows>
[[gnu::always_inline]] inline void addMethods(Class cls) {
  auto* const registerName = bound(&sel_registerName);
  auto* const addMethod = bound(&class_addMethod);
  unrolled<std::size(Rows)>([&]<size_t Index>() __attribute__((always_inline)) {
    constexpr AddedMethod kRow = Rows[Index];
    kRow.add(cls, registerName(kRow.selectorName), addMethod);
  });
}

// Declares properties that hold blocks (copy, nonatomic) in `cls`, which must be there.
template <const auto& Names>
[[gnu::always_inline]] inline void addCopiedBlockProperties(Class cls) {
  static constexpr objc_property_attribute_t kAttributes[] = {{"T", "@?"}, {"C", ""}, {"N", ""}};
  auto* const addProperty = bound(&class_addProperty);
  unrolled<std::size(Names)>([&]<size_t Index>() __attribute__((always_inline)) {
    addProperty(cls, Names[Index], kAttributes, std::size(kAttributes));
  });
}

// The class that holds a class's class methods. Null for null.
inline Class metaclassOf(Class cls) { return object_getClass(reinterpret_cast<id>(cls)); }

}  // namespace platform
