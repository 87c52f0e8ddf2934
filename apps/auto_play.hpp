// What Spotify and Podcasts share: they are told to play after they came up, and try until they do.
#pragma once
#include "platform/foundation.hpp"

namespace corvalen::apps {

// Seconds between two tries, and how many there are.
inline constexpr NSTimeInterval kPollSeconds = 0.36;
inline constexpr int32_t kMostPolls = 100;

// Whether the user wants players to play by themselves: read once, when the library loads.
extern constinit bool autoPlay;
// SpringBoard has told this player to play. Never cleared.
// docs/decisions.md: The go-ahead stays
extern constinit bool startPlayingRequested;

// One app's tries: a timer, retained, and its ticks, which rest at 1 after a stop.
struct PollTimer {
  platform::NSTimer timer{};
  int32_t ticks = 0;

  // Drops a running timer and starts the count afresh. An empty slot is told too.
  void stop();
  // Schedules `block`, which calls one of the ticks below.
  void schedule(platform::Object block);
  // One tick: `attempt()` answers whether the app plays now. Stops when it does or after the last.
  // docs/decisions.md: The 101st firing
  template <class Attempt>
  void tick(Attempt attempt) {
    if (ticks >= kMostPolls || (startPlayingRequested && attempt())) stop();
    ++ticks;
  }
};

// Reads the auto-play setting from the file.
void readAutoPlay();

// SpringBoard's go-ahead.
void startPlaying(CFNotificationCenterRef, void*, CFStringRef, const void*, CFTypeRef);

}  // namespace corvalen::apps
