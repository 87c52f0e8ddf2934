// Spotify and Podcasts from their start until they play: every tick of the timer that drives them.
#include <fmt/format.h>

#include "tests/rules/rule_fixture.hpp"

namespace sim {
namespace {

constexpr Microseconds kTick = 360'000;
constexpr Microseconds kSaveInterval = 10'000'000;
constexpr int kMostTicks = 100;
constexpr int kNever = 100'000;

const std::string kPollCall = "+[NSTimer scheduledTimerWithTimeInterval:0.36 repeats:YES]";
const std::string kSaveTimerCall = "+[NSTimer scheduledTimerWithTimeInterval:10 repeats:YES]";
const std::string kControllerCall =
    "-[SPTNowPlayingPlaybackController initWithPlayer:<SPTPlayer> trackPosition:nil "
    "radioThumbsStateManager:nil adsManager:nil trackMetadataQueue:nil]";

struct Situation {
  std::string app;
  double version = 0;
  SwitchValue autoPlay;
  int goAheadAfter = kNever;     // ticks; the signal that the player may begin
  int playsAfter = kNever;       // nudges
  int controllerAfter = kNever;  // ticks; Spotify makes another one

  std::string describe() const {
    return fmt::format(
        "{} {}, auto-play '{}', go-ahead after tick {}, plays after nudge {}, new controller after "
        "tick {}",
        app, version, autoPlay.value, goAheadAfter, playsAfter, controllerAfter);
  }
};

// The rule, tick by tick.
class Model {
 public:
  explicit Model(const Situation& situation)
      : situation_(situation), polls_(situation.autoPlay.on) {}

  std::vector<std::string> newController() {
    std::vector<std::string> effects;
    if (polls_) effects.push_back(kInvalidateCall_);
    polls_ = situation_.autoPlay.on;
    ticks_ = 0;
    if (polls_) effects.push_back(kPollCall);
    effects.push_back(kControllerCall);
    return effects;
  }
  std::vector<std::string> tick(bool goAhead) {
    std::vector<std::string> effects;
    if (!polls_) return effects;
    bool done = ticks_ >= kMostTicks;
    if (!done && goAhead) done = situation_.app == kSpotify ? spotify(effects) : podcasts(effects);
    ++ticks_;
    if (!done) return effects;
    polls_ = false;
    effects.push_back(kInvalidateCall_);
    return effects;
  }

 private:
  // Paused and resumed at every tick, also at the one that finds it playing.
  bool spotify(std::vector<std::string>& effects) {
    const bool playing = plays_;
    nudge();
    effects.insert(effects.end(), {"-[SPTPlayer setPaused:YES]", "-[SPTPlayer setPaused:NO]"});
    return playing;
  }
  bool podcasts(std::vector<std::string>& effects) {
    nudge();
    effects.push_back("-[MTPlayer play]");
    if (plays_) return true;
    nudge();
    effects.push_back("-[MTPlayer play]");
    return false;
  }
  void nudge() { plays_ |= ++nudges_ >= situation_.playsAfter; }

  inline static const std::string kInvalidateCall_ = "-[NSTimer invalidate]";
  const Situation& situation_;
  bool polls_;
  bool plays_ = false;
  int ticks_ = 0;
  int nudges_ = 0;
};

class AutoPlayRule : public RuleTest {
 protected:
  AutoPlayRule() {
    device.state.apps.insert(device.state.apps.end(),
                             {{kSpotify, "Spotify"}, {kPodcasts, "Podcasts"}});
  }

  static std::vector<std::string> startEffects(const Situation& s) {
    std::vector<std::string> effects = {
        "CFNotificationCenterAddObserver(darwin, \"GYbIKwUwyBsCan1l\")", kReadCall,
        postCall(kPlayerStarted)};
    const auto add = [&](const std::string& call) { effects.push_back(call); };
    if (s.app == kSpotify) {
      add("MSHookMessageEx(SPTNowPlayingPlaybackController, initWithPlayer:trackPosition:"
          "radioThumbsStateManager:adsManager:trackMetadataQueue:)");
      add("MSHookMessageEx(SpotifyAppDelegate, application:didFinishLaunchingWithOptions:)");
      add(kSaveTimerCall);
      add("-[SpotifyAppDelegate application:<UIApplication> didFinishLaunchingWithOptions:nil]");
    } else {
      const std::string delegate = s.version >= 1240.1 ? "MTAppDelegate_iOS" : "MTAppDelegate";
      add("MSHookMessageEx(" + delegate + ", application:willFinishLaunchingWithOptions:)");
      if (s.autoPlay.on) add(kPollCall);
      add("-[" + delegate + " application:<UIApplication> willFinishLaunchingWithOptions:nil]");
    }
    if (s.app == kSpotify && s.autoPlay.on) add(kPollCall);
    if (s.app == kSpotify) add(kControllerCall);
    return effects;
  }

  void tryOne(const Situation& s) {
    for (Process* old : device.processes()) device.endProcess(*old);
    device.setVersion(s.version);
    writeOnly({{kAutoPlayKey, s.autoPlay.value}});
    device.state.players[s.app].after =
        s.playsAfter == kNever ? std::nullopt : std::optional<int>(s.playsAfter);
    check(startEffects(s), effectsOf([&] { device.startApp(s.app); }),
          [&] { return s.describe() + ": start"; });
    Model model(s);
    const int last = (s.controllerAfter == kNever ? 0 : s.controllerAfter) + kMostTicks + 5;
    Microseconds passed = 0;
    for (int tick = 0; tick < last; ++tick) {
      if (tick == s.goAheadAfter) quietly([&] { device.postDarwin(kStartPlaying); });
      if (tick == s.controllerAfter) {
        check(model.newController(), effectsOf([&] { newController(device); }),
              [&] { return s.describe() + ": new controller"; });
      }
      auto expected = model.tick(tick >= s.goAheadAfter);
      const bool saves = passed / kSaveInterval != (passed + kTick) / kSaveInterval;
      if (s.app == kSpotify && saves)
        expected.insert(expected.begin(), "-[StateController saveState]");
      passed += kTick;
      check(expected, effectsOf([&] { device.advance(kTick); }),
            [&] { return fmt::format("{}: tick {}", s.describe(), tick + 1); });
    }
  }
};

const int kGoAheads[] = {0, 1, 2, 49, 98, 99, 100, 101, kNever};
const int kNudges[] = {1, 2, 3, 4, 5, 99, 100, 199, 200, 201, kNever};

TEST_F(AutoPlayRule, HoldsForSpotify) {
  for (const double version : {847.2, 1280.0})
    for (const SwitchValue& autoPlay : kPlainSwitchValues)
      for (const int goAhead : kGoAheads)
        for (const int playsAfter : kNudges)
          for (const int controller : {0, 1, 3, 50, 99, 100, 101, 102, kNever})
            tryOne({kSpotify, version, autoPlay, goAhead, playsAfter, controller});
}

TEST_F(AutoPlayRule, HoldsForPodcasts) {
  for (const double version : kVersionsInside)
    for (const SwitchValue& autoPlay : kPlainSwitchValues)
      for (const int goAhead : kGoAheads)
        for (const int playsAfter : kNudges)
          tryOne({kPodcasts, version, autoPlay, goAhead, playsAfter});
}

TEST_F(AutoPlayRule, HoldsForEveryKindOfSetting) {
  for (const auto& app : {kSpotify, kPodcasts})
    for (const SwitchValue& autoPlay : kAllSwitchValues) tryOne({app, 1145.15, autoPlay, 2, 3});
}

}  // namespace
}  // namespace sim
