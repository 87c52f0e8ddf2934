// Garmin Connect: the watch's music buttons.
#pragma once
#include "platform/hook.hpp"

namespace corvalen::apps {

// -[GCMMusicController didReceiveCommand:]: the buttons become media commands; play goes through
// SpringBoard, which may have to start the player.
struct DidReceiveCommand {
  static inline constinit platform::Previous<void(id, SEL, NSInteger)> previous{};
  static void replacement(id self, SEL name, NSInteger command);
};

}  // namespace corvalen::apps
