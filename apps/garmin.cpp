#include "apps/garmin.hpp"

#include "loader/signals.hpp"
#include "platform/media.hpp"

namespace corvalen::apps {

using namespace platform;

namespace {

// The watch's numbers.
enum WatchCommand : uint32_t { kPlayPause = 0, kNext = 1, kPrevious = 2 };

}  // namespace

void DidReceiveCommand::replacement(id self, SEL name, NSUInteger command) {
  switch (static_cast<uint32_t>(command)) {
    case kPrevious:
      sendMediaCommand(MediaCommand::previousTrack);
      break;
    case kNext:
      sendMediaCommand(MediaCommand::nextTrack);
      break;
    case kPlayPause:
      notify_post(signals::kTogglePlayback);
      break;
    default:
      previous(self, name, command);
  }
}

}  // namespace corvalen::apps
