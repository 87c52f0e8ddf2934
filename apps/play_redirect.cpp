#include "apps/play_redirect.hpp"

#include "loader/preferences.hpp"
#include "loader/signals.hpp"
#include "platform/relaxed.hpp"

namespace corvalen::apps {

using namespace platform;

namespace {

// SpringBoard has a now-playing item. Written on the main thread, read on any: a stale read decides
// one command.
// docs/decisions.md: A stale flag decides one command
constinit Relaxed<bool> playsElsewhere{};

}  // namespace

void nowPlaying(CFNotificationCenterRef, void*, CFStringRef, const void*, CFTypeRef) {
  playsElsewhere.store(true);
}

void nothingPlaying(CFNotificationCenterRef, void*, CFStringRef, const void*, CFTypeRef) {
  playsElsewhere.store(false);
}

// The file is read at each command: an app has no other way to know of a change.
// docs/decisions.md: Apps read the file
Boolean PlayCommand::replacement(uint32_t command, id options) {
  if (command != static_cast<uint32_t>(MediaCommand::play) &&
      command != static_cast<uint32_t>(MediaCommand::toggle))
    return previous(command, options);
  bool enabled = false;
  Retained<NSString> player;
  {
    const auto settings = preferences::read();
    enabled = preferences::boolean(settings.get(), preferences::key::masterSwitch());
    player =
        preferences::asText(settings->objectForKey(preferences::key::preferredPlayer())).copy();
  }
  if (playsElsewhere.load() || !enabled) return previous(command, options);
  // Without a player chosen the command is lost: redirection is on, but to nothing.
  // docs/decisions.md: A command that is lost
  if (player->length() != 0) notify_post(signals::kLaunchPlayer);
  return 0;
}

}  // namespace corvalen::apps
