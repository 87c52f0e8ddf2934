#include "apps/spotify.hpp"

#include "apps/auto_play.hpp"
#include "platform/block.hpp"
#include "platform/players.hpp"
#include "ui/block_timer.hpp"

namespace corvalen::apps {

using namespace platform;

namespace {

constexpr NSTimeInterval kSaveSeconds = 10.0;

constinit PollTimer poll{};
// docs/decisions.md: State is saved for the life of the app
constinit NSTimer stateSaveTimer{};  // kept for the life of the process

// Nudges the player; true if it was playing before.
// docs/decisions.md: Asked anew each time
bool tryToPlay(SPTNowPlayingPlaybackController controller) {
  if (!controller.respondsTo(selector<"player">())) return false;
  if (!controller.player().respondsTo(selector<"playerState">())) return false;
  const SPTPlayerState checked = controller.player().playerState();
  if (!checked.respondsTo(selector<"isPlaying">())) return false;
  if (!checked.respondsTo(selector<"isPaused">())) return false;
  // Held: the app may replace its player while that is told something.
  const auto player = Retained<SPTPlayer>::retain(controller.player());
  const SPTPlayerState state = player->playerState();
  const bool playing = state.isPlaying();
  const bool notPaused = !state.isPaused();
  // Paused and resumed also if it plays already: what counts is that the last word was to resume.
  // docs/decisions.md: Paused, then resumed
  if (player->respondsTo(selector<"setPaused:">())) player->setPaused(true);
  if (player->respondsTo(selector<"setPaused:">())) player->setPaused(false);
  return playing && notPaused;
}

void saveState() {
  const NSObject cls = StateController::cls();
  if (!cls || !cls.respondsTo(selector<"sharedStateController">())) return;
  const StateController controller = StateController::sharedStateController(cls);
  if (controller.respondsTo(selector<"saveState">())) controller.saveState();
}

}  // namespace

id PlaybackControllerInit::replacement(id self, SEL name, id player, id trackPosition,
                                       id radioThumbs, id adsManager, id metadataQueue) {
  poll.stop();
  if (autoPlay) {
    using Controller = SPTNowPlayingPlaybackController;
    auto callback =
        block<void()>([controller = Retained<Controller>::retain(view<Controller>(self))] {
          poll.tick([&controller] { return tryToPlay(controller.get()); });
        });
    poll.schedule(callback.object());
  }
  return previous(self, name, player, trackPosition, radioThumbs, adsManager, metadataQueue);
}

BOOL SpotifyDidFinishLaunching::replacement(id self, SEL name, id application, id options) {
  auto callback = block<void()>([] { saveState(); });
  stateSaveTimer = ui::scheduledTimer(kSaveSeconds, callback.object(), /*repeats=*/true);
  objc_retain(stateSaveTimer.raw);
  return previous(self, name, application, options);
}

}  // namespace corvalen::apps
