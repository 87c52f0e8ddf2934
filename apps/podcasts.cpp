#include "apps/podcasts.hpp"

#include "apps/auto_play.hpp"
#include "platform/block.hpp"
#include "platform/players.hpp"

namespace corvalen::apps {

using namespace platform;

namespace {

constinit PollTimer poll{};  // of both variants: a process has one

// The shared controller, asked anew at each use. `cls` may be nil: then nothing answers.
MTPlayerController shared(NSObject cls) { return MTPlayerController::sharedInstance(cls); }

MTPlayer newerPlayer(NSObject cls) {
  if (!cls.respondsTo(selector<"sharedInstance">())) return {};
  if (!shared(cls).respondsTo(selector<"player">())) return {};
  if (!shared(cls).respondsTo(selector<"isPlaying">())) return {};
  if (!shared(cls).player().respondsTo(selector<"play">())) return {};
  return shared(cls).player();
}

MTPlayer olderPlayer(NSObject cls) {
  if (!cls.respondsTo(selector<"sharedInstance">())) return {};
  if (!shared(cls).respondsTo(selector<"playerViewController">())) return {};
  if (!shared(cls).respondsTo(selector<"isPlaying">())) return {};
  if (!shared(cls).playerViewController().respondsTo(selector<"player">())) return {};
  if (!shared(cls).playerViewController().player().respondsTo(selector<"play">())) return {};
  return shared(cls).playerViewController().player();
}

// Tells the player to play, twice if once is not enough; true if it plays after the first.
bool tryToPlay(NSObject cls, MTPlayer player) {
  if (!player) return false;
  player.play();
  if (shared(cls).isPlaying()) return true;
  player.play();
  return false;
}

using FindPlayer = MTPlayer (*)(NSObject);

template <FindPlayer findPlayer>
void pollForPlayer() {
  poll.stop();
  if (!autoPlay) return;
  auto callback = block<void()>([cls = Retained<NSObject>::retain(MTPlayerController::cls())] {
    poll.tick([&cls] { return tryToPlay(cls.get(), findPlayer(cls.get())); });
  });
  poll.schedule(callback.object());
}

}  // namespace

BOOL PodcastsWillFinishLaunching::replacement(id self, SEL name, id application, id options) {
  pollForPlayer<newerPlayer>();
  return previous(self, name, application, options);
}

BOOL OlderPodcastsWillFinishLaunching::replacement(id self, SEL name, id application, id options) {
  pollForPlayer<olderPlayer>();
  return previous(self, name, application, options);
}

}  // namespace corvalen::apps
