#include "springboard/music_replacement.hpp"

#include "loader/preferences.hpp"
#include "platform/applist.hpp"
#include "springboard/launcher.hpp"
#include "springboard/session.hpp"

namespace corvalen::springboard {

using namespace platform;

Retained<NSString> musicReplacementForNowPlaying() {
  const NSString nowPlaying = mediaController.nowPlayingApplication().bundleIdentifier();
  auto replacement = preferences::text(preferences::key::musicReplacement());
  const bool musicHoldsTrack =
      mediaController.hasTrack() && nowPlaying.isEqualToString("com.apple.Music"_ns);
  const bool chosen = musicHoldsTrack && replacement->length() != 0;
  if (!chosen || !ALApplicationList::cls() || !isAppListed(replacement.get())) return {};
  return replacement;
}

void openMusicReplacement(NSString replacement) {
  pendingLaunchUsesPreferredPlayer = false;
  launchPlayer(LaunchOptions{}, replacement);
}

}  // namespace corvalen::springboard
