#include "springboard/lock_screen.hpp"

#include "springboard/session.hpp"

namespace corvalen::springboard {

// Only this combination is the user's cancelling; the platform hides the passcode entry in other
// ways while an unlock goes on.
// docs/decisions.md: Only a hidden passcode entry is a refusal
ResultWord SetPasscodeLockVisible::replacement(id self, SEL name, BOOL visible, BOOL animated,
                                               id completion) {
  if (!visible && animated && !completion) resetPendingLaunch();
  return previous(self, name, visible, animated, completion);
}

ResultWord HandleDisplayTurnedOff::replacement(id self, SEL name) {
  resetPendingLaunch();
  return previous(self, name);
}

BOOL TouchesShouldCancel::replacement(id self, SEL name, id contentView) {
  resetPendingLaunch();
  return previous(self, name, contentView);
}

}  // namespace corvalen::springboard
