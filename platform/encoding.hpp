// Type encodings of methods ("v@:@q"), made from the C++ function types themselves, so that they
// are right on both widths. Stands in for the compiler's @encode; leaves out frame offsets, which
// are optional, and types that no added method has.
#pragma once
#include "platform/types.hpp"

namespace platform {

// An argument that is a block: passed as any object, but encoded as a block.
struct BlockObject;
using BlockPointer = BlockObject*;

namespace detail {

template <class T>
consteval const char* codeOf() {
  if constexpr (std::is_void_v<T>)
    return "v";
  else if constexpr (std::is_same_v<T, bool>)
    return "B";
  else if constexpr (std::is_same_v<T, signed char>)
    return "c";
  else if constexpr (std::is_same_v<T, id>)
    return "@";
  else if constexpr (std::is_same_v<T, BlockPointer>)
    return "@?";
  else if constexpr (std::is_same_v<T, SEL>)
    return ":";
  else if constexpr (std::is_same_v<T, double>)
    return "d";
  else if constexpr (std::is_same_v<T, int>)
    return "i";
  else if constexpr (std::is_same_v<T, long>)
    return "q";
  else
    static_assert(sizeof(T) == 0, "a type without an encoding");
}

template <size_t Size>
struct EncodingText {
  char text[Size]{};
};

template <class Function>
struct Encoded;
template <class R, class... A>
struct Encoded<R(A...)> {
  static constexpr auto make() {
    constexpr const char* codes[] = {codeOf<R>(), codeOf<A>()...};
    EncodingText<2 * (sizeof...(A) + 1) + 1> out;
    size_t used = 0;
    for (const char* code : codes)
      for (; *code; ++code) out.text[used++] = *code;
    return out;
  }
  static constexpr auto value = make();
};

}  // namespace detail

// The encoding of a method implementation of that function type: result, receiver, selector,
// arguments.
template <class Function>
inline constexpr const char* kEncoding = detail::Encoded<Function>::value.text;

}  // namespace platform
