#include "springboard/media_controls.hpp"

#include "loader/preferences.hpp"
#include "platform/version.hpp"
#include "springboard/launcher.hpp"
#include "springboard/music_replacement.hpp"
#include "springboard/session.hpp"

namespace corvalen::springboard {

using namespace platform;

namespace key = preferences::key;

namespace {

// docs/decisions.md: Play is another number from 8.4 on
NSInteger playPauseControlType() {
  const bool renumbered = kIOS8_4 <= version() && version() <= kLastSupported;
  return renumbered ? 3 : 4;
}

bool startsPlayingByItself(NSString app) {
  return app.isEqualToString("com.spotify.client"_ns) ||
         app.isEqualToString("com.apple.podcasts"_ns);
}

}  // namespace

void TransportControlTap::replacement(id self, SEL name, id view, NSInteger controlType) {
  const PlayRedirect decision = evaluatePlayRedirect();
  if (decision.verdict == Verdict::passThrough || controlType != playPauseControlType())
    return previous(self, name, view, controlType);
  if (decision.verdict == Verdict::redirect)
    launchPlayer(launchOptionsFromSettings(), decision.preferredPlayer.get());
}

// docs/decisions.md: Who asks the master switch
void TitleTap::replacement(id self, SEL name, id titlesView) {
  resetPendingLaunch();
  const auto replacement = musicReplacementForNowPlaying();
  if (!replacement) return previous(self, name, titlesView);
  openMusicReplacement(replacement.get());
}

void IconLaunch::replacement(id self, SEL name, id icon) {
  const bool enabled = preferences::boolean(key::masterSwitch());
  const auto player = preferences::text(key::preferredPlayer());
  const auto app = Retained<NSString>::retain(view<SBIcon>(icon).applicationBundleID());
  const bool running = applicationForIdentifier(app.get()).isRunning();
  if (enabled && player->length() != 0 && version() >= kIOS8 && running &&
      app->isEqualToString(player.get())) {
    // Marked as backgrounded, the scene comes to the front by a normal transition. The lookup is by
    // bundle identifier on every version, unlike the one above.
    // docs/decisions.md: Two look-ups of one app
    stopLaunchWatch();
    const auto application = Retained<SBApplication>::retain(
        applicationController.applicationWithBundleIdentifier(app.get()));
    setSceneBackgrounded(application.get(), true);
  }
  // docs/decisions.md: Only two icons write the flag
  if (startsPlayingByItself(app.get()) && !running)
    skipNextPlaySignal =
        preferences::boolean(key::autoPlay()) && preferences::boolean(key::noAutoPlayFromIcon());
  previous(self, name, icon);
}

// docs/decisions.md: Who asks whether an app is listed
BOOL ApplicationLaunch::replacement(id self, SEL name, id identifier, BOOL suspended) {
  if (version() >= kIOS8 && !suspended && preferences::boolean(key::masterSwitch())) {
    const NSString app = view<NSString>(identifier);
    if (app.isEqualToString(preferences::text(key::preferredPlayer()).get())) {
      // Held: the watch that is stopped may have been the last to hold it.
      const auto player = Retained<SBApplication>::retain(applicationForIdentifier(app));
      if (player->isRunning()) {
        stopLaunchWatch();
        setSceneBackgrounded(player.get(), true);
      }
    }
  }
  return previous(self, name, identifier, suspended);
}

}  // namespace corvalen::springboard
