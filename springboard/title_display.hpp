// The name that the system's media controls show: with redirection on, the preferred player's, as
// it is the one that Play will start.
#pragma once
#include "platform/hook.hpp"

namespace corvalen::springboard {

// Has every live title view show the preferred player's name, if redirection is on. When it has
// just been turned off, views keep what they show until the platform next updates them.
// docs/decisions.md: Turned off, the name stays
void refreshTitleViews();

// -[MPUMediaControlsTitlesView initWithMediaControlsStyle:]: registers the view.
struct TitlesViewInit {
  static inline constinit platform::Previous<id(id, SEL, NSInteger)> previous{};
  static id replacement(id self, SEL name, NSInteger style);
};

// -[MPUMediaControlsTitlesView dealloc]: takes it out again, before it goes.
struct TitlesViewDealloc {
  static inline constinit platform::Previous<void(id, SEL)> previous{};
  static void replacement(id self, SEL name);
};

// -[MPUMediaControlsTitlesView updateNowPlayingAppDisplayName:]: puts the player's name in.
struct UpdateNowPlayingAppDisplayName {
  static inline constinit platform::Previous<void(id, SEL, id)> previous{};
  static void replacement(id self, SEL name, id displayName);
};

}  // namespace corvalen::springboard
