// What the apps do when their process comes up.
#pragma once
#include <optional>

#include "sim/core/process.hpp"

namespace sim {

void startSpotify(Process& process);
void startPodcasts(Process& process);
void startGarmin(Process& process);

// The running Spotify makes another playback controller.
void makePlaybackController(Process& spotify);

// How a player is got to play: it begins at the given nudge, or never.
class Reluctance {
 public:
  Reluctance() = default;
  // As the device is set for this app now.
  explicit Reluctance(Process& process);
  // One nudge; true if it is the one.
  bool nudged() { return after_ && ++nudges_ == *after_; }

 private:
  std::optional<int> after_;
  int nudges_ = 0;
};

}  // namespace sim
