#include "apps/auto_play.hpp"

#include "loader/preferences.hpp"
#include "ui/block_timer.hpp"

namespace corvalen::apps {

constinit bool autoPlay = false;
constinit bool startPlayingRequested = false;

// docs/decisions.md: Apps read the file
void readAutoPlay() {
  const auto settings = preferences::read();
  autoPlay =
      preferences::asBoolean(settings->objectForKeyedSubscript(preferences::key::autoPlay()));
}

void startPlaying(CFNotificationCenterRef, void*, CFStringRef, const void*, CFTypeRef) {
  startPlayingRequested = true;
}

// docs/decisions.md: An empty slot is told too
void PollTimer::stop() {
  ticks = 0;
  timer.invalidate();
  objc_release(timer.raw);
  timer = {};
}

void PollTimer::schedule(platform::Object block) {
  const platform::NSTimer scheduled = ui::scheduledTimer(kPollSeconds, block, /*repeats=*/true);
  objc_retain(scheduled.raw);
  timer = scheduled;
}

}  // namespace corvalen::apps
