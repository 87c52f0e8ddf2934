// The app switcher: throwing out the card of the app that stands in for Music ends Music too. One
// hook for each generation of the switcher.
#pragma once
#include "platform/hook.hpp"

namespace corvalen::springboard {

// iOS 7: -[SBAppSliderController _quitAppAtIndex:]
struct QuitAppAtIndex {
  static inline constinit platform::Previous<ResultWord(id, SEL, NSUInteger)> previous{};
  static ResultWord replacement(id self, SEL name, NSUInteger index);
};

// iOS 8: -[SBAppSwitcherModel removeDisplayItem:]
struct RemoveDisplayItem {
  static inline constinit platform::Previous<ResultWord(id, SEL, id)> previous{};
  static ResultWord replacement(id self, SEL name, id item);
};

// iOS 9: -[SBAppSwitcherModel remove:]
struct RemoveItem {
  static inline constinit platform::Previous<ResultWord(id, SEL, id)> previous{};
  static ResultWord replacement(id self, SEL name, id item);
};

}  // namespace corvalen::springboard
