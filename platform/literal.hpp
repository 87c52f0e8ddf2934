// A string literal as a template argument: what selectors, class names and constant texts are named
// by. Stands in for nothing of the platform; leaves out every operation on texts but counting a
// character.
#pragma once
#include <cstddef>

namespace platform {

template <size_t Size>
struct Literal {
  char text[Size]{};

  // Implicit, so that `send<"hasTrack">` reads as it does.
  consteval Literal(const char (&source)[Size]) {
    for (size_t i = 0; i < Size; ++i) text[i] = source[i];
  }
  consteval size_t count(char wanted) const {
    size_t found = 0;
    for (char c : text) found += c == wanted;
    return found;
  }
  static constexpr size_t length = Size - 1;
};

// One copy of each distinct literal, however often it is used.
template <Literal Name>
inline constexpr Literal kText = Name;

}  // namespace platform
