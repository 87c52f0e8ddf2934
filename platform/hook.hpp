// Hooks and the rows of the tables that install them.
//
// A hook is a type with two static members: `replacement`, the function that takes the method's
// place, and `previous`, its previous-implementation slot, filled when it is installed. A row does
// not compile if the two disagree in type, or if the selector has another number of arguments.
#pragma once
#include "platform/selector.hpp"

namespace platform {

// A previous-implementation slot: `static inline constinit Previous<BOOL(id, SEL)> previous{};`.
// Null until its hook is installed; never called before that.
template <class Signature>
using Previous = Signature*;

namespace detail {
template <class Function>
inline constexpr size_t kArguments = 0;
template <class R, class... A>
inline constexpr size_t kArguments<R (*)(A...)> = sizeof...(A);
template <class Function>
inline constexpr bool kTakesReceiverAndSelector = false;
template <class R, class... A>
inline constexpr bool kTakesReceiverAndSelector<R (*)(id, SEL, A...)> = true;
}  // namespace detail

template <class Hook>
concept PairedHook = std::is_same_v<decltype(&Hook::replacement), decltype(Hook::previous)>;

template <class Hook>
concept MethodHook =
    PairedHook<Hook> && detail::kTakesReceiverAndSelector<decltype(Hook::previous)>;

// One replaced method: installs Hook at the selector of a class.
struct MethodRow {
  const char* selectorName;
  void (*install)(Class cls, SEL name);
};

template <class Hook, Literal SelectorName>
requires MethodHook<Hook> &&(detail::kArguments<decltype(Hook::previous)> ==
                             kText<SelectorName>.count(':') + 2) consteval MethodRow method() {
  return {kText<SelectorName>.text, [](Class cls, SEL name) {
            MSHookMessageEx(cls, name, reinterpret_cast<IMP>(&Hook::replacement),
                            reinterpret_cast<IMP*>(&Hook::previous));
          }};
}

// Installs Hook in place of the C function at `function` (null: nothing happens).
template <PairedHook Hook>
void hookFunction(void* function) {
  MSHookFunction(function, reinterpret_cast<void*>(&Hook::replacement),
                 reinterpret_cast<void**>(&Hook::previous));
}

}  // namespace platform
