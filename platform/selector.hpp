// Selectors are literals, registered with the runtime when they are first used and kept.
#pragma once
#include "platform/c_abi.hpp"
#include "platform/literal.hpp"

namespace platform {

template <Literal Name>
inline constinit SEL selectorSlot = nullptr;

// Out of line, so that the common case at a call site is one load and one branch.
[[gnu::noinline, gnu::cold]] inline SEL registerSelector(SEL& slot, const char* name) {
  slot = sel_registerName(name);
  return slot;
}

// The registered selector of that name. Stands on sel_registerName; never null.
template <Literal Name>
[[gnu::always_inline]] inline SEL selector() {
  const SEL known = selectorSlot<Name>;
  if (known) [[likely]]
    return known;
  return registerSelector(selectorSlot<Name>, kText<Name>.text);
}

}  // namespace platform
