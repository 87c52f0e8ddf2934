// Type encodings of methods and blocks ("v@:@q"), made from the C++ function types themselves, so
// that they are right on both widths.
#pragma once
#include "platform/types.hpp"

namespace platform {

namespace detail {

template <class T>
consteval char codeOf() {
  if constexpr (std::is_void_v<T>)
    return 'v';
  else if constexpr (std::is_same_v<T, bool>)
    return 'B';
  else if constexpr (std::is_same_v<T, signed char>)
    return 'c';
  else if constexpr (std::is_same_v<T, unsigned char>)
    return 'C';
  else if constexpr (std::is_same_v<T, id>)
    return '@';
  else if constexpr (std::is_same_v<T, SEL>)
    return ':';
  else if constexpr (std::is_same_v<T, Class>)
    return '#';
  else if constexpr (std::is_same_v<T, double>)
    return 'd';
  else if constexpr (std::is_same_v<T, float>)
    return 'f';
  else if constexpr (std::is_integral_v<T> && sizeof(T) == 4)
    return std::is_signed_v<T> ? 'i' : 'I';
  else if constexpr (std::is_integral_v<T> && sizeof(T) == 8)
    return std::is_signed_v<T> ? 'q' : 'Q';
  else
    static_assert(sizeof(T) == 0, "a type without an encoding");
}

template <class Function>
struct Encoded;
template <class R, class... A>
struct Encoded<R (*)(A...)> {
  static constexpr char text[] = {codeOf<R>(), codeOf<A>()..., '\0'};
};
}  // namespace detail

// The encoding of a method implementation of that function pointer type: result, receiver,
// selector, arguments. Blocks count as plain objects ("@").
template <class Function>
inline constexpr const char* kEncoding = detail::Encoded<Function>::text;

}  // namespace platform
