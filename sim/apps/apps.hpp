// What the apps do when their process comes up, and what their players share. Stands in for
// Spotify, Podcasts and Garmin Connect; leaves out every screen of theirs, sound, and that their
// classes differ from one release to the next.
#pragma once
#include <optional>

#include "sim/core/device.hpp"

namespace sim {

void startSpotify(Process& process);
void startPodcasts(Process& process);
void startGarmin(Process& process);

// The running Spotify makes another playback controller.
void makePlaybackController(Process& spotify);

// How the player of this process is to behave.
const PlayerTemper& temperOf(const Process& process);

// Asked for again and again, a player may be gone for once.
class Vanishing {
 public:
  bool isGone(const Process& process) {
    const unsigned every = temperOf(process).vanishes;
    return every != 0 && ++asked_ % every == 0;
  }

 private:
  unsigned asked_ = 0;
};

// How a player is got to play: it begins at the given nudge, or never.
class Reluctance {
 public:
  Reluctance() = default;
  // As the device is set for this app now.
  explicit Reluctance(const Process& process) : after_(temperOf(process).after) {}
  // One nudge; true if it is the one.
  bool nudged() { return after_ && ++nudges_ == *after_; }

 private:
  std::optional<int> after_;
  int nudges_ = 0;
};

}  // namespace sim
