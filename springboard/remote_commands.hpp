// MediaRemote commands sent from within SpringBoard: headphone buttons, cars, watches.
#pragma once
#include "platform/hook.hpp"
#include "platform/media.hpp"

namespace corvalen::springboard {

// MRMediaRemoteSendCommand: play and toggle with nothing loaded launch the preferred player.
struct RemoteCommand {
  static inline constinit platform::PreviousFunction<platform::SendMediaCommand> previous{};
  static Boolean replacement(uint32_t command, id options);
};

}  // namespace corvalen::springboard
