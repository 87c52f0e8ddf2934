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

// What three of the widgets do: their own action, unless Music would open and is replaced.
void openNowPlayingApp(id self, SEL name, Previous<void(id, SEL)> previous) {
  resetPendingLaunch();
  const NSString replacement = musicReplacementForNowPlaying();
  if (!replacement) return previous(self, name);
  openMusicReplacement(replacement);
}

// Auxo was asked for Music while a track is held. False: Auxo shall do it.
bool openInsteadOfHeldMusic() {
  const NSString replacement = preferences::text(key::musicReplacement());
  if (!isAppListed(replacement)) return false;
  openMusicReplacement(replacement);
  return true;
}

// Auxo was asked for Music while nothing is loaded. False: Auxo shall do it.
bool openInsteadOfSilentMusic() {
  const bool enabled = preferences::boolean(key::masterSwitch());
  const NSString player = preferences::text(key::preferredPlayer());
  if (!enabled) return false;
  if (player.length() == 0) return true;  // swallowed: redirection is on, but to nothing
  if (!isAppListed(player)) return false;
  launchPlayer(launchOptionsFromSettings(), player);
  return true;
}

}  // namespace

void AcapellaOpenApp::replacement(id self, SEL name) { openNowPlayingApp(self, name, previous); }
void Acapella2OpenApp::replacement(id self, SEL name) { openNowPlayingApp(self, name, previous); }
void MiniPlayerOpenApp::replacement(id self, SEL name) { openNowPlayingApp(self, name, previous); }

// A card names its app; only a call without one is the now-playing control. The app asked for is
// the argument here, not what the media controller holds.
void AuxoActivateApplication::replacement(id self, SEL name, id identifier, id cell) {
  resetPendingLaunch();
  const bool asksForMusic =
      !cell && view<NSString>(identifier).isEqualToString("com.apple.Music"_ns);
  if (asksForMusic && ALApplicationList::cls()) {
    const bool opened =
        mediaController.hasTrack() ? openInsteadOfHeldMusic() : openInsteadOfSilentMusic();
    if (opened) return;
  }
  previous(self, name, identifier, cell);
}

}  // namespace corvalen::springboard
