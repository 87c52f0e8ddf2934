// Podcasts: plays by itself after a redirected launch. Its app delegate is another class from iOS 9
// on, and its player is found by another way.
#pragma once
#include "platform/hook.hpp"

namespace corvalen::apps {

// -[MTAppDelegate_iOS application:willFinishLaunchingWithOptions:]
struct PodcastsWillFinishLaunching {
  static inline constinit platform::Previous<BOOL(id, SEL, id, id)> previous{};
  static BOOL replacement(id self, SEL name, id application, id options);
};

// -[MTAppDelegate application:willFinishLaunchingWithOptions:]
struct OlderPodcastsWillFinishLaunching {
  static inline constinit platform::Previous<BOOL(id, SEL, id, id)> previous{};
  static BOOL replacement(id self, SEL name, id application, id options);
};

}  // namespace corvalen::apps
