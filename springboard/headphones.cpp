#include "springboard/headphones.hpp"

#include "loader/preferences.hpp"
#include "platform/main_queue.hpp"
#include "platform/media.hpp"
#include "platform/version.hpp"
#include "springboard/launcher.hpp"
#include "springboard/session.hpp"

namespace corvalen::springboard {

using namespace platform;

namespace key = preferences::key;

namespace {

// Looked up at the first notification and kept.
// docs/decisions.md: The audio class is kept
constinit ClassObject audioSystemControllerClass{};

bool isJackConnected() {
  if (!audioSystemControllerClass) audioSystemControllerClass = AVSystemController::cls();
  return preferences::asBoolean(
      AVSystemController::shared(audioSystemControllerClass)
          .attributeForKey("AVSystemController_HeadphoneJackIsConnectedAttribute"_ns));
}

bool isInCall() {
  const TUCallCenter center = TUCallCenter::sharedInstance();
  return version() >= kIOS9 ? center.anyCallIsHostedOnCurrentDevice() : center.inCall();
}

void jackChanged() {
  // docs/decisions.md: The call is asked about either way
  const bool connected = isJackConnected();
  const bool inCall = isInCall();
  if (!connected || inCall) return;
  if (!preferences::boolean(key::headphoneTrigger())) return;
  // docs/decisions.md: Headphones forget one flag
  pendingUnlockLaunch = false;  // this flag alone
  const bool enabled = preferences::boolean(key::masterSwitch());
  const auto player = preferences::text(key::preferredPlayer());
  if (!enabled || !isAppListed(player.get())) return;
  if (mediaController.hasTrack())
    mediaController.play();
  else
    launchPlayer(launchOptionsFromSettings(), player.get());
}

}  // namespace

// Local notifications come on the thread that posts them, which need not be the main one.
// docs/decisions.md: The headphones' thread
void headphoneJackChanged(CFNotificationCenterRef, void*, CFStringRef, const void*, CFTypeRef) {
  if (isMainThread())
    jackChanged();
  else
    onMainQueue([] { jackChanged(); });
}

}  // namespace corvalen::springboard
