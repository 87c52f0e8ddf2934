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
  const bool connected = isJackConnected();
  const bool inCall = isInCall();
  if (!connected || inCall) return;
  if (!preferences::boolean(key::headphoneTrigger())) return;
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
void headphoneJackChanged(CFNotificationCenterRef, void*, CFStringRef, const void*, CFTypeRef) {
  if (isMainThread())
    jackChanged();
  else
    onMainQueue([] { jackChanged(); });
}

}  // namespace corvalen::springboard
