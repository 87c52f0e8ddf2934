// The preferred player's process has come up: while a hidden start applies, its scene is kept in
// front so that it may begin to play.
#pragma once
#include "platform/hook.hpp"

namespace corvalen::springboard {

// -[SBApplication processDidLaunch:]
struct ProcessDidLaunch {
  static inline constinit platform::Previous<void(id, SEL, id)> previous{};
  static void replacement(id self, SEL name, id process);
};

}  // namespace corvalen::springboard
