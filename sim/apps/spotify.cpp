// Spotify: its app delegate, playback controller, player and the player's state. Leaves out tracks,
// accounts and radio, and what is saved when state is saved.
#include "sim/apps/apps.hpp"
#include "sim/apps/definitions.hpp"
#include "sim/core/device.hpp"
#include "sim/platform/telling.hpp"
#include "sim/springboard/media.hpp"
#include "sim/uikit/application.hpp"

namespace sim {

const PlayerTemper& temperOf(const Process& process) {
  return process.device.state.players[process.identifier];
}

namespace {

class SPTPlayer;

class SPTPlayerState final : public Object {
 public:
  using Object::Object;
  bool isPlaying() const {
    const auto& reports = temperOf(process).reports;
    return reports ? reports->playing : phase == Phase::Playing;
  }
  bool isPaused() const {
    const auto& reports = temperOf(process).reports;
    return reports ? reports->paused : phase == Phase::Paused;
  }

  enum class Phase : std::uint8_t { Idle, Playing, Paused } phase = Phase::Idle;
};

class SPTPlayer final : public Object {
 public:
  using Object::Object;
  SPTPlayerState* playerState() {
    const std::string name = "SPTPlayerState";
    return process.findClass(name) ? &process.shared<SPTPlayerState>(name) : nullptr;
  }

  void setPaused(bool paused) {
    using Phase = SPTPlayerState::Phase;
    if (!playerState()) return;
    const Ref<Object> alive(this);
    SPTPlayerState& state = *playerState();
    const bool starts = !paused && reluctance.nudged() && state.phase == Phase::Idle;
    if (starts) {
      state.phase = Phase::Playing;
      beginPlaying(process.device, process.identifier);
    } else if (paused && state.phase == Phase::Playing) {
      state.phase = Phase::Paused;
      setTrackPlaying(process.device, process.identifier, false);
    } else if (!paused && state.phase == Phase::Paused) {
      state.phase = Phase::Playing;
      setTrackPlaying(process.device, process.identifier, true);
    }
    if (temperOf(process).replaced) replace();
  }
  // Another object that goes on where this one was.
  void replace() {
    const auto next = process.make<SPTPlayer>("SPTPlayer");
    next->reluctance = reluctance;
    process.replaceShared("SPTPlayer", next);
  }

  Reluctance reluctance;
};

class PlaybackController final : public Object {
 public:
  using Object::Object;
  // An initialiser may answer another object than it was sent to.
  Ref<PlaybackController> init(SPTPlayer* given, Object*, Object*, Object*, Object*) {
    hasPlayer_ = given != nullptr;
    if (!process.device.state.tellingArguments) return this;
    auto other = process.make<PlaybackController>("SPTNowPlayingPlaybackController");
    other->hasPlayer_ = hasPlayer_;
    return other;
  }
  // The app's one player, whichever object that is by now.
  SPTPlayer* player() {
    if (!hasPlayer_ || vanishing_.isGone(process)) return nullptr;
    return &process.shared<SPTPlayer>("SPTPlayer");
  }

 private:
  bool hasPlayer_ = false;
  Vanishing vanishing_;
};

// YES, unless answers are to tell.
bool didFinishLaunching(Object& self, Object*, Object*) {
  return !self.process.device.state.tellingArguments;
}

Object* sharedState(Class& cls) { return &cls.process.shared<Object>("StateController"); }

}  // namespace

void makePlaybackController(Process& spotify) {
  const std::string name = "SPTNowPlayingPlaybackController";
  Class* cls = spotify.findClass(name);
  if (!cls || !spotify.findClass("SPTPlayer")) return;
  const Ref<Object> fresh = spotify.allocateInstance(*cls);
  auto& player = spotify.shared<SPTPlayer>("SPTPlayer");
  const Value result = spotify.sendIfAnswered(
      fresh.get(),
      "initWithPlayer:trackPosition:radioThumbsStateManager:adsManager:trackMetadataQueue:",
      {Value::object(player.address), objectArgument(spotify), objectArgument(spotify),
       objectArgument(spotify), objectArgument(spotify)});
  if (Object* made = spotify.object(result.bits)) spotify.kept.emplace_back(made);
}

void startSpotify(Process& process) {
  if (process.findClass("SPTPlayer"))
    process.shared<SPTPlayer>("SPTPlayer").reluctance = Reluctance(process);
  if (process.findClass("SpotifyAppDelegate"))
    process.sendIfAnswered(
        &process.shared<Object>("SpotifyAppDelegate"), "application:didFinishLaunchingWithOptions:",
        {Value::object(sharedApplication(process)->address), optionsArgument(process)});
  makePlaybackController(process);
}

ClassDefinition defineSPTPlayerState() {
  auto definition =
      ClassDefinition::of<SPTPlayerState>("SPTPlayerState", "NSObject", Home::app(kSpotify));
  definition.method("isPlaying", &SPTPlayerState::isPlaying);
  definition.method("isPaused", &SPTPlayerState::isPaused);
  return definition;
}

ClassDefinition defineSPTPlayer() {
  auto definition = ClassDefinition::of<SPTPlayer>("SPTPlayer", "NSObject", Home::app(kSpotify));
  definition.method("playerState", &SPTPlayer::playerState);
  definition.method("setPaused:", &SPTPlayer::setPaused).effect();
  return definition;
}

ClassDefinition defineSPTNowPlayingPlaybackController() {
  auto definition = ClassDefinition::of<PlaybackController>("SPTNowPlayingPlaybackController",
                                                            "NSObject", Home::app(kSpotify));
  definition
      .method("initWithPlayer:trackPosition:radioThumbsStateManager:adsManager:trackMetadataQueue:",
              &PlaybackController::init)
      .effect();
  definition.method("player", &PlaybackController::player);
  return definition;
}

ClassDefinition defineSpotifyAppDelegate() {
  auto definition =
      ClassDefinition::of<Object>("SpotifyAppDelegate", "NSObject", Home::app(kSpotify));
  definition
      .code(detail::methodCode<Object, bool, Object*, Object*>(
          "application:didFinishLaunchingWithOptions:", didFinishLaunching))
      .effect();
  return definition;
}

ClassDefinition defineStateController() {
  auto definition = ClassDefinition::of<Object>("StateController", "NSObject", Home::app(kSpotify));
  definition.classMethod("sharedStateController", &sharedState);
  definition.code(detail::methodCode<Object, void>("saveState", [](Object&) {})).effect();
  return definition;
}

}  // namespace sim
