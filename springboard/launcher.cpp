#include "springboard/launcher.hpp"

#include "loader/preferences.hpp"
#include "platform/applist.hpp"
#include "platform/system_services.hpp"
#include "platform/version.hpp"
#include "springboard/launch_watch.hpp"
#include "springboard/session.hpp"

namespace corvalen::springboard {

using namespace platform;

namespace key = preferences::key;

namespace {

constexpr uint32_t kLaunchSound = 1352;
constexpr int kPlatformUnlockSource = 0;
constexpr int kPlatformBacklightSource = 1;
constexpr double kIdleTimerSeconds = 8.0;
constexpr int kIdleTimerMode = 1;

bool screenIsDark() {
  if (version() >= kIOS9) return !backlightController.screenIsOn();
  return backlightController.screenIsOff();
}

// The launch waits until the user has entered the passcode.
void requestUnlock(bool wakeScreen) {
  pendingUnlockLaunch = true;
  controlCenterController.dismissAnimated(true);
  lockScreenManager.lockScreenViewController().setPasscodeLockVisible(
      true, true, kPlatformUnlockSource, Object{});
  if (!wakeScreen || !screenIsDark()) return;
  backlightController.turnOnScreenFully(kPlatformBacklightSource);
  backlightController.resetLockScreenIdleTimer(kIdleTimerSeconds, kIdleTimerMode);
}

// iOS 7 needs the suspended player nudged from here; later ones are started by their own hooks.
// docs/decisions.md: iOS 7 is nudged
void launchHidden(SBApplication application, NSString bundleIdentifier) {
  SpringBoard::shared().launchApplication(bundleIdentifier, true);
  if (version() < kIOS8) watchLaunch(application, bundleIdentifier);
}

}  // namespace

LaunchOptions launchOptionsFromSettings() {
  LaunchOptions options;
  options.startHiddenWhenLocked = preferences::boolean(key::startHiddenWhenLocked());
  options.startHiddenWhenUnlocked = preferences::boolean(key::startHiddenWhenUnlocked());
  options.playLaunchSound = preferences::boolean(key::playLaunchSound());
  return options;
}

void launchPlayer(LaunchOptions options, NSString bundleIdentifier) {
  if (!versionIsSupported()) return;
  if (options.playLaunchSound) playSystemSound(kLaunchSound);
  const auto application =
      Retained<SBApplication>::retain(applicationForIdentifier(bundleIdentifier));
  if (lockScreenManager.isUILocked()) {
    // docs/decisions.md: Locked and running is never hidden
    if (!options.startHiddenWhenLocked)
      requestUnlock(/*wakeScreen=*/true);
    else if (application->isRunning())  // never started hidden while locked
      requestUnlock(/*wakeScreen=*/false);
    else
      launchHidden(application.get(), bundleIdentifier);
    return;
  }
  // Unlike above, a running player is brought to the front even if a hidden start was asked for.
  // docs/decisions.md: Unlocked and running comes to the front
  if (!options.startHiddenWhenUnlocked || application->isRunning())
    SpringBoard::shared().launchApplication(bundleIdentifier, false);
  else
    launchHidden(application.get(), bundleIdentifier);
}

PlayRedirect evaluatePlayRedirect() {
  resetPendingLaunch();
  const bool enabled = preferences::boolean(key::masterSwitch());
  const auto player = preferences::text(key::preferredPlayer());
  const bool listed = isAppListed(player.get());
  // A paused track counts as something that plays.
  // docs/decisions.md: A paused track counts
  if (mediaController.hasTrack()) return {Verdict::passThrough, {}};
  if (enabled && listed) return {Verdict::redirect, player};
  // docs/decisions.md: A command that is lost
  if (enabled && player->length() == 0) return {Verdict::swallow, {}};
  return {Verdict::passThrough, {}};
}

void completePendingLaunch() {
  if (!pendingUnlockLaunch) return;
  pendingUnlockLaunch = false;
  Retained<NSString> app;
  if (pendingLaunchUsesPreferredPlayer) {
    app = preferences::text(key::preferredPlayer());
    if (!preferences::boolean(key::masterSwitch())) return;
  } else {
    // docs/decisions.md: Who asks the master switch
    pendingLaunchUsesPreferredPlayer = true;
    app = preferences::text(key::musicReplacement());
  }
  if (isAppListed(app.get())) SpringBoard::shared().launchApplication(app.get(), false);
}

bool isAppListed(NSString bundleIdentifier) {
  if (bundleIdentifier.length() == 0) return false;
  const ClassObject list = ALApplicationList::cls();
  if (!list) return false;
  return ALApplicationList::sharedApplicationList(list).applications().allKeys().containsObject(
      bundleIdentifier);
}

SBApplication applicationForIdentifier(NSString bundleIdentifier) {
  if (version() >= kIOS9)
    return applicationController.applicationWithBundleIdentifier(bundleIdentifier);
  // iOS 8 lost this message. AppList gives it back, some versions of it only when it is first sent,
  // so that respondsToSelector: says NO. Without AppList it would end SpringBoard.
  // docs/decisions.md: The look-up that iOS 8 lost
  const bool answered = as<NSObject>(applicationController)
                            .respondsTo(selector<"applicationWithDisplayIdentifier:">());
  if (answered || ALApplicationList::cls())
    return applicationController.applicationWithDisplayIdentifier(bundleIdentifier);
  return applicationController.applicationWithBundleIdentifier(bundleIdentifier);
}

void setSceneBackgrounded(SBApplication application, bool backgrounded) {
  const Object current = application.mainScene().mutableSettings();
  const auto settings = Retained<FBSMutableSceneSettings>::adopt(
      send<"mutableCopy", FBSMutableSceneSettings>(current));
  // docs/decisions.md: Answers that are missing
  if (!settings.get()) return;  // a scene takes no other thing for settings
  settings->setBackgrounded(backgrounded);
  application.mainScene().applyMutableSettings(settings.get(), Object{}, Object{});
}

}  // namespace corvalen::springboard
