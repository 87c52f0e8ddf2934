// Every other app: a play command sent while nothing is loaded becomes a request to SpringBoard.
#pragma once
#include "platform/hook.hpp"
#include "platform/media.hpp"

namespace corvalen::apps {

// MRMediaRemoteSendCommand. Any thread.
struct PlayCommand {
  static inline constinit platform::PreviousFunction<platform::SendMediaCommand> previous{};
  static Boolean replacement(uint32_t command, id options);
};

// SpringBoard has a now-playing item, or has none any more.
void nowPlaying(CFNotificationCenterRef, void*, CFStringRef, const void*, CFTypeRef);
void nothingPlaying(CFNotificationCenterRef, void*, CFStringRef, const void*, CFTypeRef);

}  // namespace corvalen::apps
