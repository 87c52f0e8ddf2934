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
  previous(self, name, process);
  const bool enabled = preferences::boolean(key::masterSwitch());
  const NSString player = preferences::text(key::preferredPlayer());
  const auto application = view<SBApplication>(self);
  const NSString launched = application.bundleIdentifier();
  if (!enabled || player.length() == 0) return;
  if (!hiddenStartApplies() || !launched.isEqualToString(player)) return;
  setSceneBackgrounded(application, false);
  keepSceneAlive(application, player);
}

}  // namespace corvalen::springboard
