// The greeting at the first unlock after installation or update, and what else an unlock brings.
#pragma once
#include "platform/hook.hpp"

namespace corvalen::welcome {

// -[SBLockScreenViewController finishUIUnlockFromSource:]: greets the user once, then carries out a
// launch that waited for the unlock.
struct FinishUIUnlock {
  static inline constinit platform::Previous<ResultWord(id, SEL, int)> previous{};
  static ResultWord replacement(id self, SEL name, int source);
};

// Whether a network is reachable without the user's doing, from the flags of the route to the
// all-zero address.
bool isReachable(uint32_t flags);

}  // namespace corvalen::welcome
