#include "springboard/signal_handlers.hpp"

#include "loader/preferences.hpp"
#include "loader/signals.hpp"
#include "platform/media.hpp"
#include "springboard/launcher.hpp"
#include "springboard/session.hpp"

namespace corvalen::springboard {

void settingsChanged(CFNotificationCenterRef, void*, CFStringRef, const void*, CFTypeRef) {
  preferences::loadPreferences();
}

void playerStarted(CFNotificationCenterRef, void*, CFStringRef, const void*, CFTypeRef) {
  if (!skipNextPlaySignal) notify_post(signals::kStartPlaying);
  skipNextPlaySignal = false;
}

// The master switch is not asked: the app that posts has read it from the file.
// docs/decisions.md: Who asks the master switch
void launchRequested(CFNotificationCenterRef, void*, CFStringRef, const void*, CFTypeRef) {
  resetPendingLaunch();
  const auto player = preferences::text(preferences::key::preferredPlayer());
  if (isAppListed(player.get())) launchPlayer(launchOptionsFromSettings(), player.get());
}

void toggleRequested(CFNotificationCenterRef, void*, CFStringRef, const void*, CFTypeRef) {
  platform::sendMediaCommand(platform::MediaCommand::toggle);
}

}  // namespace corvalen::springboard
