#include "springboard/widgets.hpp"

#include "loader/preferences.hpp"
#include "platform/applist.hpp"
#include "springboard/launcher.hpp"
#include "springboard/music_replacement.hpp"
#include "springboard/session.hpp"

namespace corvalen::springboard {

using namespace platform;

namespace key = preferences::key;

namespace {

constexpr ResultWord kTakenOver = 0;

// What three of the widgets do: their own action, unless Music would open and is replaced.
template <class Hook>
ResultWord openNowPlayingApp(id self, SEL name) {
  resetPendingLaunch();
  const auto replacement = musicReplacementForNowPlaying();
  if (!replacement) return Hook::previous(self, name);
  openMusicReplacement(replacement.get());
  return kTakenOver;
}

// Auxo was asked for Music while a track is held. False: Auxo shall do it.
bool openInsteadOfHeldMusic() {
  const auto replacement = preferences::text(key::musicReplacement());
  if (!isAppListed(replacement.get())) return false;
  openMusicReplacement(replacement.get());
  return true;
}

// Auxo was asked for Music while nothing is loaded. False: Auxo shall do it.
bool openInsteadOfSilentMusic() {
  const bool enabled = preferences::boolean(key::masterSwitch());
  const auto player = preferences::text(key::preferredPlayer());
  if (!enabled) return false;
  if (player->length() == 0) return true;  // swallowed: redirection is on, but to nothing
  if (!isAppListed(player.get())) return false;
  launchPlayer(launchOptionsFromSettings(), player.get());
  return true;
}

}  // namespace

ResultWord AcapellaOpenApp::replacement(id self, SEL name) {
  return openNowPlayingApp<AcapellaOpenApp>(self, name);
}
ResultWord Acapella2OpenApp::replacement(id self, SEL name) {
  return openNowPlayingApp<Acapella2OpenApp>(self, name);
}
ResultWord MiniPlayerOpenApp::replacement(id self, SEL name) {
  return openNowPlayingApp<MiniPlayerOpenApp>(self, name);
}

// A card names its app; only a call without one is the now-playing control. The app asked for is
// the argument here, not what the media controller holds.
// docs/decisions.md: Auxo's argument counts
ResultWord AuxoActivateApplication::replacement(id self, SEL name, id identifier, id cell) {
  resetPendingLaunch();
  const bool asksForMusic =
      !cell && view<NSString>(identifier).isEqualToString("com.apple.Music"_ns);
  if (asksForMusic && ALApplicationList::cls()) {
    const bool opened =
        mediaController.hasTrack() ? openInsteadOfHeldMusic() : openInsteadOfSilentMusic();
    if (opened) return kTakenOver;
  }
  return previous(self, name, identifier, cell);
}

}  // namespace corvalen::springboard
