#include "springboard/process_tracking.hpp"

#include "loader/preferences.hpp"
#include "springboard/launch_watch.hpp"
#include "springboard/launcher.hpp"
#include "springboard/session.hpp"

namespace corvalen::springboard {

using namespace platform;

namespace key = preferences::key;

namespace {

// Whether the launcher starts a player hidden as the device is now.
bool hiddenStartApplies() {
  if (preferences::boolean(key::startHiddenWhenLocked()) && lockScreenManager.isUILocked())
    return true;
  return preferences::boolean(key::startHiddenWhenUnlocked()) && !lockScreenManager.isUILocked();
}

}  // namespace

void ProcessDidLaunch::replacement(id self, SEL name, id process) {
  const auto application = Retained<SBApplication>::retain(view<SBApplication>(self));
  previous(self, name, process);
  const bool enabled = preferences::boolean(key::masterSwitch());
  const auto player = preferences::text(key::preferredPlayer());
  const NSString launched = application->bundleIdentifier();
  if (!enabled || player->length() == 0) return;
  if (!hiddenStartApplies() || !launched.isEqualToString(player.get())) return;
  setSceneBackgrounded(application.get(), false);
  keepSceneAlive(application.get(), player.get());
}

}  // namespace corvalen::springboard
