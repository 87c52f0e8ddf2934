#include "apps/podcasts.hpp"

#include "apps/auto_play.hpp"
#include "platform/block.hpp"
#include "platform/players.hpp"

namespace corvalen::apps {

using namespace platform;

namespace {

constinit PollTimer poll{};  // of both variants: a process has one

// The shared controller, asked anew at each use. `cls` may be nil: then nothing answers.
// docs/decisions.md: Asked anew each time
MTPlayerController shared(NSObject cls) { return MTPlayerController::sharedInstance(cls); }

// The way to the player, which the two generations of the app have differently.
struct Newer {
  static MTPlayer player(NSObject cls) { return shared(cls).player(); }
  static bool answers(NSObject cls) {
    return cls.respondsTo(selector<"sharedInstance">()) &&
           shared(cls).respondsTo(selector<"player">()) &&
           shared(cls).respondsTo(selector<"isPlaying">()) &&
           player(cls).respondsTo(selector<"play">());
  }
};
struct Older {
  static MTPlayer player(NSObject cls) { return shared(cls).playerViewController().player(); }
  static bool answers(NSObject cls) {
    return cls.respondsTo(selector<"sharedInstance">()) &&
           shared(cls).respondsTo(selector<"playerViewController">()) &&
           shared(cls).respondsTo(selector<"isPlaying">()) &&
           shared(cls).playerViewController().respondsTo(selector<"player">()) &&
           player(cls).respondsTo(selector<"play">());
  }
};

// Tells the player to play, twice if once is not enough; true if it plays after the first. Asked
// for again, the player may be gone by now: then nothing is told, but what plays still counts.
// docs/decisions.md: Podcasts is told twice
template <class Way>
bool tryToPlay(NSObject cls) {
  if (!Way::answers(cls)) return false;
  // Held: the app may replace its player while that begins to play.
  const auto player = Retained<MTPlayer>::retain(Way::player(cls));
  player->play();
  if (shared(cls).isPlaying()) return true;
  player->play();
  return false;
}

template <class Way>
void pollForPlayer() {
  poll.stop();
  if (!autoPlay) return;
  auto callback = block<void()>([cls = Retained<NSObject>::retain(MTPlayerController::cls())] {
    poll.tick([&cls] { return tryToPlay<Way>(cls.get()); });
  });
  poll.schedule(callback.object());
}

}  // namespace

BOOL PodcastsWillFinishLaunching::replacement(id self, SEL name, id application, id options) {
  pollForPlayer<Newer>();
  return previous(self, name, application, options);
}

BOOL OlderPodcastsWillFinishLaunching::replacement(id self, SEL name, id application, id options) {
  pollForPlayer<Older>();
  return previous(self, name, application, options);
}

}  // namespace corvalen::apps
