// What SpringBoard's hooks share for the life of the process: SpringBoard's controllers, the live
// title views, and the flags that carry a play request over the gap between the request, the
// passcode unlock and the player's start. Main thread only; no locks.
#pragma once
#include "platform/hook.hpp"
#include "platform/springboard.hpp"

namespace corvalen::springboard {

// ---- SpringBoard's controllers, captured when it has finished launching; null before, and where
// the class is missing. SpringBoard keeps them alive.
extern constinit platform::SBMediaController mediaController;
extern constinit platform::SBBacklightController backlightController;
extern constinit platform::SBApplicationController applicationController;
extern constinit platform::SBLockScreenManager lockScreenManager;
extern constinit platform::SBControlCenterController controlCenterController;

// ---- Every live now-playing title view, held without a reference. Null before -init.
extern constinit platform::NSMutableArray titleViewRegistry;

// ---- The request on its way

// A launch waits for the passcode unlock.
extern constinit bool pendingUnlockLaunch;
// That launch is the preferred player's, not the Music replacement's.
extern constinit bool pendingLaunchUsesPreferredPlayer;
// The next player that starts is not told to play.
extern constinit bool skipNextPlaySignal;

// The one timer that watches a launched player, retained, and its ticks. The count rests at 1 after
// a watch ended by itself: a later watch that finds the slot empty may count on from there.
// docs/decisions.md: The count rests at one
extern constinit platform::NSTimer launchWatchTimer;
extern constinit int32_t launchWatchTicks;

// Forgets a request that waits: the three flags return to idle.
// docs/decisions.md: When a waiting launch is forgotten
void resetPendingLaunch();

// Ends a running watch, if there is one, and its count.
void stopLaunchWatch();
// Invalidates, releases and empties the slot, whatever it holds; the count stays.
void clearLaunchWatchTimer();

// ---- Hooks

// -[SpringBoard init]: creates the title-view registry.
struct SpringBoardInit {
  static inline constinit platform::Previous<id(id, SEL)> previous{};
  static id replacement(id self, SEL name);
};

// -[SpringBoard applicationDidFinishLaunching:]: captures the controllers.
struct ApplicationDidFinishLaunching {
  static inline constinit platform::Previous<void(id, SEL, id)> previous{};
  static void replacement(id self, SEL name, id application);
};

// -[SBMediaController setNowPlayingInfo:]: tells the other apps whether something is loaded.
struct SetNowPlayingInfo {
  static inline constinit platform::Previous<void(id, SEL, id)> previous{};
  static void replacement(id self, SEL name, id info);
};

// -[SBAppSuggestionManager init]: there is none, so that no suggested app, such as Music, is shown.
struct AppSuggestionManagerInit {
  static inline constinit platform::Previous<id(id, SEL)> previous{};
  static id replacement(id self, SEL name);
};

}  // namespace corvalen::springboard
