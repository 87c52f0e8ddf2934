#include "springboard/launch_watch.hpp"

#include "loader/signals.hpp"
#include "platform/block.hpp"
#include "springboard/launcher.hpp"
#include "springboard/session.hpp"
#include "ui/block_timer.hpp"

namespace corvalen::springboard {

using namespace platform;

namespace {

constexpr NSTimeInterval kTickSeconds = 1.0;
constexpr int32_t kMostNudges = 40;
constexpr int32_t kKeepAliveTicks = 25;

// docs/decisions.md: The count rests at one
void launchWatchTick(SBApplication application, NSString bundleIdentifier) {
  if (launchWatchTicks < kMostNudges && !mediaController.isPlaying()) {
    application.resumeForContentAvailable();
    // docs/decisions.md: A signal for Pandora
    if (launchWatchTicks == 1 && bundleIdentifier.isEqualToString("com.pandora"_ns))
      notify_post(signals::kPandoraLaunched);
  } else {
    launchWatchTicks = 0;
    clearLaunchWatchTimer();
  }
  ++launchWatchTicks;  // after a stop too: it rests at 1
}

void sceneKeepAliveTick(SBApplication application, NSString bundleIdentifier) {
  const bool waiting = launchWatchTicks < kKeepAliveTicks && !mediaController.isPlaying();
  if (!waiting) {
    const NSString front = SpringBoard::shared().frontMostApplication().bundleIdentifier();
    if (!front.isEqualToString(bundleIdentifier)) {
      setSceneBackgrounded(application, true);
      launchWatchTicks = 0;
      clearLaunchWatchTimer();
    }
  }
  ++launchWatchTicks;  // after a stop too: it rests at 1
}

using Tick = void (*)(SBApplication, NSString);

// The callback keeps the app and its identifier alive for as long as the timer has it.
template <Tick tick>
void schedule(SBApplication application, NSString bundleIdentifier) {
  auto callback = block<void()>([app = Retained<SBApplication>::retain(application),
                                 identifier = Retained<NSString>::retain(bundleIdentifier)] {
    tick(app.get(), identifier.get());
  });
  const NSTimer timer = ui::scheduledTimer(kTickSeconds, callback.object(), /*repeats=*/true);
  objc_retain(timer.raw);
  launchWatchTimer = timer;
}

}  // namespace

void watchLaunch(SBApplication application, NSString bundleIdentifier) {
  if (launchWatchTimer) clearLaunchWatchTimer();
  launchWatchTicks = 0;
  schedule<launchWatchTick>(application, bundleIdentifier);
}

void keepSceneAlive(SBApplication application, NSString bundleIdentifier) {
  stopLaunchWatch();
  schedule<sceneKeepAliveTick>(application, bundleIdentifier);
}

}  // namespace corvalen::springboard
