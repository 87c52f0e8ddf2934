// The platform's C types, and the one place that knows how 32- and 64-bit devices differ. Stands in
// for the headers that declare them; leaves out structures, but for those that stand beside their
// one use.
#pragma once
#include <cstddef>
#include <cstdint>
#include <type_traits>

struct objc_object;
struct objc_selector;
struct objc_class;
using id = objc_object*;
using SEL = objc_selector*;
using Class = objc_class*;
using IMP = void (*)();  // cast to the exact prototype before every call

namespace platform {
inline constexpr bool k64Bit = sizeof(void*) == 8;
}

using BOOL = std::conditional_t<platform::k64Bit, bool, signed char>;
using NSInteger = std::conditional_t<platform::k64Bit, long, int>;
using NSUInteger = std::conditional_t<platform::k64Bit, unsigned long, unsigned int>;
// docs/decisions.md: Results of void methods
using ResultWord = uintptr_t;  // whatever a method that is declared void leaves as its result
using CFIndex = long;
using NSTimeInterval = double;  // seconds
using Boolean = unsigned char;  // CoreFoundation's and MediaRemote's truth value
using CFTypeRef = const void*;
using CFStringRef = const void*;
using CFNotificationCenterRef = void*;

inline constexpr BOOL YES = static_cast<BOOL>(1);
inline constexpr BOOL NO = static_cast<BOOL>(0);
