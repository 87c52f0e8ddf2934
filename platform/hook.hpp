// Hooks and the rows of the tables that install them. Stands in for the preprocessors that hooks
// are otherwise written in; leaves out hooks that come and go: what is installed stays.
//
// A hook is a type with two static members: `replacement`, the function that takes the method's
// place, and `previous`, its previous-implementation slot, filled when it is installed. A row does
// not compile if the two disagree in type, or if the selector has another number of arguments.
//
// Some methods are declared void, but what comes back from the implementation before ours is handed
// on all the same (ResultWord): somebody between the platform and us may answer something.
#pragma once
#include "platform/selector.hpp"

namespace platform {

namespace detail {

// Where the hooking framework writes what was there before. `Stored` is the very type that it
// writes; the call casts it to the type of the function.
template <class Signature, class Stored>
struct Slot;
template <class R, class... A, class Stored>
struct Slot<R(A...), Stored> {
  using Pointer = R (*)(A...);
  Stored stored = nullptr;  // null until the hook is installed; never called before that

  R operator()(A... arguments) const { return reinterpret_cast<Pointer>(stored)(arguments...); }
};

}  // namespace detail

// A previous-implementation slot: `static inline constinit Previous<BOOL(id, SEL)> previous{};`.
template <class Signature>
using Previous = detail::Slot<Signature, IMP>;
// The same for a C function.
template <class Signature>
using PreviousFunction = detail::Slot<Signature, void*>;

namespace detail {
template <class Function>
inline constexpr size_t kArguments = 0;
template <class R, class... A>
inline constexpr size_t kArguments<R (*)(A...)> = sizeof...(A);
template <class Function>
inline constexpr bool kTakesReceiverAndSelector = false;
template <class R, class... A>
inline constexpr bool kTakesReceiverAndSelector<R (*)(id, SEL, A...)> = true;
template <class Hook>
using SlotPointer = typename decltype(Hook::previous)::Pointer;
}  // namespace detail

template <class Hook>
concept PairedHook = std::is_same_v<decltype(&Hook::replacement), detail::SlotPointer<Hook>>;

template <class Hook>
concept MethodHook =
    PairedHook<Hook> && detail::kTakesReceiverAndSelector<detail::SlotPointer<Hook>>;

// One replaced method: installs Hook at the selector of a class.
struct MethodRow {
  const char* selectorName;
  void (*install)(Class cls, SEL name, decltype(&MSHookMessageEx) hookMessage);
};

template <class Hook, Literal SelectorName>
requires MethodHook<Hook> &&(detail::kArguments<detail::SlotPointer<Hook>> ==
                             kText<SelectorName>.count(':') + 2) consteval MethodRow method() {
  return {
      kText<SelectorName>.text, [](Class cls, SEL name, decltype(&MSHookMessageEx) hookMessage) {
        hookMessage(cls, name, reinterpret_cast<IMP>(&Hook::replacement), &Hook::previous.stored);
      }};
}

// Installs Hook in place of the C function at `function`, which must be there.
template <PairedHook Hook>
void hookFunction(void* function) {
  MSHookFunction(function, reinterpret_cast<void*>(&Hook::replacement), &Hook::previous.stored);
}

}  // namespace platform
