// The lock screen: a launch that waits for the unlock is forgotten when the user turns away from
// it. Every hook passes through unchanged.
#pragma once
#include "platform/hook.hpp"

namespace corvalen::springboard {

// -[SBLockScreenViewController setPasscodeLockVisible:animated:completion:]
struct SetPasscodeLockVisible {
  static inline constinit platform::Previous<ResultWord(id, SEL, BOOL, BOOL, id)> previous{};
  static ResultWord replacement(id self, SEL name, BOOL visible, BOOL animated, id completion);
};

// -[SBLockScreenViewController _handleDisplayTurnedOff]
struct HandleDisplayTurnedOff {
  static inline constinit platform::Previous<ResultWord(id, SEL)> previous{};
  static ResultWord replacement(id self, SEL name);
};

// -[SBLockScreenScrollView touchesShouldCancelInContentView:]
struct TouchesShouldCancel {
  static inline constinit platform::Previous<BOOL(id, SEL, id)> previous{};
  static BOOL replacement(id self, SEL name, id contentView);
};

}  // namespace corvalen::springboard
