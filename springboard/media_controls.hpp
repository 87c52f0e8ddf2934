// Taps on the system's media controls and launches of app icons.
#pragma once
#include "platform/hook.hpp"

namespace corvalen::springboard {

// -[MPUSystemMediaControlsViewController transportControlsView:tapOnControlType:]: Play with
// nothing loaded launches the preferred player.
struct TransportControlTap {
  static inline constinit platform::Previous<void(id, SEL, id, NSInteger)> previous{};
  static void replacement(id self, SEL name, id view, NSInteger controlType);
};

// -[MPUSystemMediaControlsViewController mediaControlsTitlesViewWasTapped:]: while Music holds the
// track, opens the app that the user has instead of it.
struct TitleTap {
  static inline constinit platform::Previous<void(id, SEL, id)> previous{};
  static void replacement(id self, SEL name, id titlesView);
};

// -[SBIconController _launchIcon:]: prepares the preferred player's scene to come to the front, and
// keeps Spotify and Podcasts from playing by themselves where the user wants that.
struct IconLaunch {
  static inline constinit platform::Previous<void(id, SEL, id)> previous{};
  static void replacement(id self, SEL name, id icon);
};

// -[SpringBoard launchApplicationWithIdentifier:suspended:]: prepares the running preferred
// player's scene to come to the front.
struct ApplicationLaunch {
  static inline constinit platform::Previous<BOOL(id, SEL, id, BOOL)> previous{};
  static BOOL replacement(id self, SEL name, id identifier, BOOL suspended);
};

}  // namespace corvalen::springboard
