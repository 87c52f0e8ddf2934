// Selectors are literals, registered with the runtime when they are first used and kept. Stands in
// for the compiler's @selector, which registers all of an image's at its load; leaves out names
// made at run time.
// docs/decisions.md: No static initialisers
#pragma once
#include "platform/c_abi.hpp"
#include "platform/literal.hpp"
#include "platform/relaxed.hpp"

namespace platform {

// Any thread may be the first to use one: all of them find the same selector.
template <Literal Name>
inline constinit Relaxed<SEL> selectorSlot{};

// Out of line, so that the common case at a call site is one load and one branch.
[[gnu::noinline, gnu::cold]] inline SEL registerSelector(Relaxed<SEL>& slot, const char* name) {
  const SEL registered = sel_registerName(name);
  slot.store(registered);
  return registered;
}

// The registered selector of that name. Stands on sel_registerName; never null.
template <Literal Name>
[[gnu::always_inline]] inline SEL selector() {
  const SEL known = selectorSlot<Name>.load();
  if (known) [[likely]]
    return known;
  return registerSelector(selectorSlot<Name>, kText<Name>.text);
}

}  // namespace platform
