// String objects that live in the library's own data, as the compiler's @"…" makes them: no message
// is sent to have one, and retain and release do not count. Leaves out texts beyond ASCII, which
// have another layout.
#pragma once
#include "platform/object.hpp"

namespace platform {

struct NSString;

// The layout that CoreFoundation gives its constant strings.
struct ConstantStringLayout {
  const void* isa;
  uintptr_t flags;
  const char* characters;
  uintptr_t length;  // bytes
};
// Constant, 8-bit characters, nul-terminated, never freed.
inline constexpr uintptr_t kConstantAsciiString = 0x7c8;

template <Literal Text>
inline constinit ConstantStringLayout constantStringStorage = {
    &__CFConstantStringClassReference, kConstantAsciiString, kText<Text>.text, Text.length};

// A constant string as tables hold it: its address is known when the library is built.
using ConstantText = const ConstantStringLayout*;
template <Literal Text>
inline constexpr ConstantText kConstantText = &constantStringStorage<Text>;
inline id objectOf(ConstantText text) {
  return reinterpret_cast<id>(const_cast<ConstantStringLayout*>(text));
}

// The constant string of that literal (ASCII only). Borrowed, valid for ever.
template <Literal Text, class View = NSString>
View constantString() {
  return view<View>(reinterpret_cast<id>(&constantStringStorage<Text>));
}

inline namespace literals {
// "text"_ns is the constant string, spelled like the other compilers' @"text".
template <Literal Text>
auto operator""_ns() {
  return constantString<Text>();
}
}  // namespace literals

}  // namespace platform
