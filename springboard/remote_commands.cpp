#include "springboard/remote_commands.hpp"

#include "springboard/launcher.hpp"

namespace corvalen::springboard {

using platform::MediaCommand;

Boolean RemoteCommand::replacement(uint32_t command, id options) {
  if (command != static_cast<uint32_t>(MediaCommand::play) &&
      command != static_cast<uint32_t>(MediaCommand::toggle))
    return previous(command, options);
  const PlayRedirect decision = evaluatePlayRedirect();
  if (decision.verdict == Verdict::passThrough) return previous(command, options);
  if (decision.verdict == Verdict::redirect)
    launchPlayer(launchOptionsFromSettings(), decision.preferredPlayer.get());
  return 0;
}

}  // namespace corvalen::springboard
