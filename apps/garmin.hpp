// Garmin Connect: the watch's music buttons.
#pragma once
#include "platform/hook.hpp"

namespace corvalen::apps {

// -[GCMMusicController didReceiveCommand:]: the buttons become media commands; play goes through
// SpringBoard, which may have to start the player.
struct DidReceiveCommand {
  static inline constinit platform::Previous<void(id, SEL, NSUInteger)> previous{};
  static void replacement(id self, SEL name, NSUInteger command);
};

}  // namespace corvalen::apps
