// Which start of a process brings its scene to the front, and how long SpringBoard watches what it
// started.
#include "tests/rules/rule_fixture.hpp"

namespace sim {
namespace {

const double kVersions[] = {847.2, 847.24, 899.99, 900.0, 1145.15, 1240.09, 1240.1, 1280.0};

class ProcessLaunchRule : public RuleTest {
 protected:
  void bring(bool enabled, const char* player, bool hiddenWhenLocked, bool hiddenWhenUnlocked) {
    announce({{"iea9AQXrEmhSZ4u", yes(enabled)},
              {"2I8UQMOAwU5nnNZt", player},
              {"4sySMd4CfPOr0F", yes(hiddenWhenLocked)},
              {"KwI68FtaZGgSizb", yes(hiddenWhenUnlocked)},
              {"feo63OPBmERAd2000UpdRdCAND", yes(true)}});
  }
  // The watch ends at the first tick that finds something playing.
  void endWatch() {
    device.state.track = Track{kMusic, true};
    if (!springBoard().timers.empty()) device.advance(1'000'000);
    device.state.track.reset();
    ASSERT_TRUE(springBoard().timers.empty());
  }
  void startWatch() {
    bring(true, "<string>com.example.listed</string>", true, true);
    processLaunched(device, kListed);
  }
};

TEST_F(ProcessLaunchRule, EveryProcessInEverySituation) {
  const std::string didLaunch = fmt::format("-[SBApplication({}) processDidLaunch:nil]", kListed);
  for (const double version : kVersions) {
    boot(version);
    for (const bool enabled : {false, true})
      for (const Player& player : kPlayerValues)
        for (unsigned bits = 0; bits < 16; ++bits, ++combinations) {
          const bool hiddenWhenLocked = bits & 1, hiddenWhenUnlocked = bits & 2, locked = bits & 4;
          const bool watching = bits & 8;
          endWatch();
          if (watching) startWatch();
          const bool watches = watching && version >= 900.0;
          bring(enabled, player.xml, hiddenWhenLocked, hiddenWhenUnlocked);
          device.state.locked = locked;
          // AppList is not asked.
          const bool same =
              player.chosen && std::string(player.xml).find(kListed) != std::string::npos;
          const bool allowed = locked ? hiddenWhenLocked : hiddenWhenUnlocked;
          Effects ruled = {didLaunch};
          if (version >= 900.0 && enabled && same && allowed) {
            ruled.push_back(scene(kListed, false));
            if (watches) ruled.push_back(kInvalidate);
            ruled.push_back(kWatch);
          }
          EXPECT_EQ(effectsOf([&] { processLaunched(device, kListed); }), ruled) << fmt::format(
              "version {}, switch {}, player {}, hidden {} {}, locked {}, watching {}", version,
              enabled, player.xml ? player.xml : "absent", hiddenWhenLocked, hiddenWhenUnlocked,
              locked, watching);
        }
    if (HasFailure()) return;
  }
  EXPECT_EQ(combinations, 8u * 2 * 7 * 16);
}

// ---- How long a scene is kept in front: 25 ticks, or until something plays; and as long as the
// player is the app in front.

struct Keeping {
  int playsBefore;  // this tick, counted from 1; 0: never
  const char* front;
  int startsAt;  // the counter: 1 behind an earlier watch
};

class SceneKeepAlive : public ProcessLaunchRule {
 protected:
  // The tick at which the scene goes back, of the first 40; 0 if it does not.
  int backAt(const Keeping& now) {
    boot(1145.15);
    device.state.track.reset();
    device.state.front.reset();
    if (now.startsAt == 1) {
      startWatch();
      endWatch();
    }
    startWatch();
    if (now.front) device.state.front = now.front;
    for (int tick = 1; tick <= 40; ++tick) {
      if (now.playsBefore == tick) device.state.track = Track{kListed, true};
      const Effects effects = effectsOf([&] { device.advance(1'000'000); });
      if (effects.empty()) continue;
      EXPECT_EQ(effects, (Effects{scene(kListed, true), kInvalidate}));
      return tick;
    }
    return 0;
  }
};

TEST_F(SceneKeepAlive, EveryMomentAtWhichSomethingPlays) {
  for (const char* front :
       {static_cast<const char*>(nullptr), "com.example.other", kListed.c_str()})
    for (const int startsAt : {0, 1})
      for (int plays = 0; plays <= 30; ++plays, ++combinations) {
        const int tires = 26 - startsAt;
        int ruled = plays == 0 ? tires : std::min(plays, tires);
        if (front && front == kListed) ruled = 0;
        ASSERT_EQ(backAt({plays, front, startsAt}), ruled)
            << (front ? front : "nothing") << " in front, from " << startsAt << ", plays at "
            << plays;
      }
  EXPECT_EQ(combinations, 3u * 2 * 31);
}

TEST_F(SceneKeepAlive, TheTickBehindThePlayersLeavingTheFrontTakesTheSceneBack) {
  for (int leaves = 27; leaves <= 40; ++leaves) {
    boot(1145.15);
    device.state.front = kListed;
    startWatch();
    device.advance((leaves - 1) * 1'000'000);
    device.state.front.reset();
    EXPECT_EQ(effectsOf([&] { device.advance(1'000'000); }),
              (Effects{scene(kListed, true), kInvalidate}));
  }
}

// ---- How often a hidden player is nudged on iOS 7: once a second, 40 times or until it plays;
// Pandora's own signal comes with the second.

class LaunchWatch : public ProcessLaunchRule {
 protected:
  struct Watched {
    int nudges = 0;
    int signals = 0;
    int signalAt = 0;
    int endsAt = 0;
  };
  Watched watch(const std::string& app, int plays) {
    boot(847.24);
    device.state.track.reset();
    if (!device.state.app(app)) device.state.apps.push_back({app, app});
    device.state.app(app)->running = false;
    const std::string player = "<string>" + app + "</string>";
    bring(true, player.c_str(), true, true);
    remote(device, 0);
    device.state.app(app)->running = true;
    Watched seen;
    for (int tick = 1; tick <= 45 && seen.endsAt == 0; ++tick) {
      if (plays == tick) device.state.track = Track{app, true};
      for (const auto& effect : effectsOf([&] { device.advance(1'000'000); })) {
        if (effect == "-[SBApplication(" + app + ") resumeForContentAvailable]") ++seen.nudges;
        if (effect == R"(notify_post("PV2qdgEyDYK8gUci"))") {
          ++seen.signals;
          seen.signalAt = tick;
        }
        if (effect == kInvalidate) seen.endsAt = tick;
      }
    }
    if (device.process(app)) end(device, app);
    device.drain();
    return seen;
  }
};

TEST_F(LaunchWatch, EveryMomentAtWhichSomethingPlays) {
  for (const std::string app : {"com.pandora", "com.example.listed"})
    for (int plays = 0; plays <= 43; ++plays, ++combinations) {
      const int ends = plays == 0 ? 41 : std::min(plays, 41);
      const Watched seen = watch(app, plays);
      const bool signals = app == "com.pandora" && ends > 2;
      EXPECT_EQ(seen.nudges, ends - 1) << app << ' ' << plays;
      EXPECT_EQ(seen.signals, signals ? 1 : 0) << app << ' ' << plays;
      EXPECT_EQ(seen.signalAt, signals ? 2 : 0) << app << ' ' << plays;
      EXPECT_EQ(seen.endsAt, ends) << app << ' ' << plays;
    }
  EXPECT_EQ(combinations, 88u);
}

}  // namespace
}  // namespace sim
