// Spotify: plays by itself after a redirected launch, and saves its state now and then.
#pragma once
#include "platform/hook.hpp"

namespace corvalen::apps {

// -[SPTNowPlayingPlaybackController initWithPlayer:trackPosition:radioThumbsStateManager:
//   adsManager:trackMetadataQueue:]: the controller through which playback is started.
struct PlaybackControllerInit {
  static inline constinit platform::Previous<id(id, SEL, id, id, id, id, id)> previous{};
  static id replacement(id self, SEL name, id player, id trackPosition, id radioThumbs,
                        id adsManager, id metadataQueue);
};

// -[SpotifyAppDelegate application:didFinishLaunchingWithOptions:]: keeps the state saved.
struct SpotifyDidFinishLaunching {
  static inline constinit platform::Previous<BOOL(id, SEL, id, id)> previous{};
  static BOOL replacement(id self, SEL name, id application, id options);
};

}  // namespace corvalen::apps
