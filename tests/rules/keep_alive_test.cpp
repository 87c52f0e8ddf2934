// Which process launches make SpringBoard keep a player's scene alive, and how long its two watches
// last.
#include <fmt/format.h>

#include <array>

#include "tests/rules/rule_fixture.hpp"

namespace sim {
namespace {

enum class Slot { Empty, LaunchWatch, KeepAlive };

constexpr Microseconds kSecond = 1'000'000;

bool isPlain(const SwitchValue& value) {
  return std::ranges::count(kPlainSwitchValues, value.value, &SwitchValue::value) > 0;
}

class KeepAliveRule : public RuleTest {
 protected:
  KeepAliveRule() {
    installInert(kPlayer);
    installInert(kOther);
    installInert("com.pandora");
    installInert("");  // which no empty setting means
  }
  static Settings hidden(bool locked, bool unlocked, const std::string& player = kPlayer) {
    return {{kSwitchKey, kYes},
            {kPlayerKey, writtenText(player)},
            {kHiddenLockedKey, writtenTruth(locked)},
            {kHiddenUnlockedKey, writtenTruth(unlocked)}};
  }
  static std::string launchedCall(const std::string& app) {
    return "-[" + owned("SBApplication", app) + " processDidLaunch:nil]";
  }
  static std::string nudgeCall(const std::string& app) {
    return "-[SBApplication(" + app + ") resumeForContentAvailable]";
  }
  void stopWatch() {
    device.state.track = Track{kMusic, true};
    device.state.front.reset();
    quietly([&] { device.advance(kSecond); });
    device.state.track.reset();
  }
  // A watch of `player` is there, of a kind that the running version need not make by itself.
  void take(Slot slot) {
    if (slot == Slot::Empty) return;
    device.state.locked = false;
    const double version = device.state.version;
    device.setVersion(slot == Slot::LaunchWatch ? 899.999999999999 : version);
    announce(hidden(false, true));
    const auto made = effectsOf([&] {
      if (slot == Slot::LaunchWatch)
        remote(device, 0);
      else
        processLaunched(device, kPlayer);
    });
    device.setVersion(version);
    EXPECT_EQ(std::ranges::count(made, kTimerCall), 1);
  }
};

TEST_F(KeepAliveRule, BeginsForEveryLaunchThatWasHiddenAndForNoOther) {
  std::vector<Written> players = {kAbsent, writtenText(""), writtenText(kPlayer),
                                  writtenText(kOther), writtenText("com.example.Player")};
  auto allPlayers = players;
  allPlayers.insert(allPlayers.end(), kNoTexts.begin(), kNoTexts.end());
  for (const double version : kVersionsInside) {
    bootAt(version);
    const bool odd = version == 1145.15;  // the kinds of values tell apart no versions
    const std::vector<SwitchValue> hiddenValues =
        odd ? kPlainSwitchValues : std::vector<SwitchValue>{{kNo, false}, {kYes, true}};
    for (const Slot slot : {Slot::Empty, Slot::LaunchWatch, Slot::KeepAlive}) {
      if (slot == Slot::KeepAlive && version < 900.0) continue;  // nothing can make it there
      for (const SwitchValue& on : odd ? kAllSwitchValues : kPlainSwitchValues)
        for (const Written& player : odd&& isPlain(on) ? allPlayers : players)
          for (const SwitchValue& whenLocked : hiddenValues)
            for (const SwitchValue& whenUnlocked : hiddenValues)
              for (unsigned bits = 0; bits < 12; ++bits) {
                const bool locked = bits & 1;
                const std::string launched = std::array{kPlayer, kOther, std::string()}[bits / 4];
                stopWatch();
                take(slot);
                announce({{kSwitchKey, on.value},
                          {kPlayerKey, player},
                          {kHiddenLockedKey, whenLocked.value},
                          {kHiddenUnlockedKey, whenUnlocked.value}});
                device.state.locked = locked;
                if (bits & 2) device.state.track = Track{kMusic, true};  // which is not asked
                std::vector<std::string> expected = {launchedCall(launched)};
                const bool hides = locked ? whenLocked.on : whenUnlocked.on;
                if (version >= 900.0 && on.on && hides && !launched.empty() &&
                    player == writtenText(launched)) {
                  expected.push_back(sceneCall(launched, false));
                  if (slot != Slot::Empty) expected.push_back(kInvalidateCall);
                  expected.push_back(kTimerCall);
                }
                check(expected, effectsOf([&] { processLaunched(device, launched); }), [&] {
                  return fmt::format(
                      "version {}, slot {}, switch '{}', player '{}', hidden '{}' '{}', locked {}, "
                      "launched {}, playing {}",
                      version, static_cast<int>(slot), on.value, player, whenLocked.value,
                      whenUnlocked.value, locked, launched, (bits & 2) != 0);
                });
              }
    }
  }
}

// ---- How long a watch lasts

class WatchRule : public KeepAliveRule {
 protected:
  // A keep-alive begins with the counter at that value: the two watches share it. It rests at 1
  // when a watch ends by itself, and is set to 0 when one is replaced.
  void beginKeepAlive(int counter) {
    stopWatch();
    device.state.locked = false;
    announce(hidden(false, true));
    quietly([&] { processLaunched(device, kPlayer); });
    if (counter == 1) {
      stopWatch();  // which leaves 1 behind
      quietly([&] { processLaunched(device, kPlayer); });
    } else {
      quietly([&] { processLaunched(device, kPlayer); });  // replaces the one before
    }
  }
  // When, if ever, each thing becomes so: at the ticks from that one on.
  struct Course {
    int playsFrom = 0;
    int playsUntil = 0;
    int frontUntil = 0;
  };
  void set(const Course& course, int tick) {
    device.state.track.reset();
    if (tick >= course.playsFrom && tick < course.playsUntil)
      device.state.track = Track{kPlayer, true};
    else
      device.state.track = Track{kPlayer, false};  // a held track is not enough
    device.state.front = kOther;
    if (tick < course.frontUntil) device.state.front = kPlayer;
  }
};

TEST_F(WatchRule, AKeepAliveLastsUntilThePlayerPlaysOrTimeIsUpAndIsNotInFront) {
  const int last = 34;
  for (const double version : {900.0, 1145.15, 1280.0}) {
    bootAt(version);
    for (const int counter : {0, 1})
      for (int playsFrom = 1; playsFrom <= last; ++playsFrom)
        for (const int playsFor : {0, 1, 3, 100})
          for (const int frontUntil : {0, 1, 2, 5, 24, 25, 26, 27, 28, 30, 32, 33}) {
            if (playsFor == 0 && playsFrom > 1) continue;
            beginKeepAlive(counter);
            const Course course{playsFrom, playsFrom + playsFor, frontUntil};
            int ticks = counter;
            bool ended = false;
            for (int tick = 1; tick <= last; ++tick) {
              set(course, tick);
              const bool plays = tick >= course.playsFrom && tick < course.playsUntil;
              std::vector<std::string> expected;
              if (!ended && (ticks >= 25 || plays) && tick >= frontUntil) {
                expected = {sceneCall(kPlayer, true), kInvalidateCall};
                ended = true;
              }
              ++ticks;
              check(expected, effectsOf([&] { device.advance(kSecond); }), [&] {
                return fmt::format(
                    "version {}, counter from {}, plays from {} for {}, in front before {}: tick "
                    "{}",
                    version, counter, playsFrom, playsFor, frontUntil, tick);
              });
            }
          }
  }
}

TEST_F(WatchRule, WithNothingInFrontAKeepAliveEndsAsWell) {
  bootAt(1145.15);
  beginKeepAlive(0);
  device.state.front.reset();
  check<std::vector<std::string>>({}, effectsOf([&] { device.advance(25 * kSecond); }),
                                  [] { return "25 ticks"; });
  check<std::vector<std::string>>({sceneCall(kPlayer, true), kInvalidateCall},
                                  effectsOf([&] { device.advance(kSecond); }),
                                  [] { return "the 26th"; });
}

// From the beginning of every launch watch, whatever went before, the counter is 0.
TEST_F(WatchRule, ALaunchWatchNudgesUntilSomethingPlaysOrFortyTimes) {
  const std::string pandora = "com.pandora";
  for (const double version : {847.2, 847.24, 899.999999999999}) {
    bootAt(version);
    for (const auto& app : {kPlayer, pandora})
      for (const bool locked : {false, true})
        for (const int before : {0, 1, 2, 40, 41})  // ticks of an older watch
          for (int playsAt = 1; playsAt <= 43; ++playsAt) {
            stopWatch();
            announce(hidden(true, true, app));
            device.state.locked = locked;
            if (before > 0) {
              quietly([&] { remote(device, 0); });
              quietly([&] { device.advance(before * kSecond); });
            }
            device.state.track.reset();
            quietly([&] { remote(device, 0); });
            bool ended = false;
            for (int tick = 1; tick <= 43; ++tick) {
              device.state.track.reset();
              if (tick == playsAt) device.state.track = Track{app, true};
              if (tick == 3) device.state.track = Track{app, tick == playsAt};  // held, silent
              std::vector<std::string> expected;
              if (!ended && (tick > 40 || tick == playsAt)) {
                expected = {kInvalidateCall};
                ended = true;
              } else if (!ended) {
                expected = {nudgeCall(app)};
                if (tick == 2 && app == pandora) expected.push_back(postCall("PV2qdgEyDYK8gUci"));
              }
              check(expected, effectsOf([&] { device.advance(kSecond); }), [&] {
                return fmt::format(
                    "version {}, {}, locked {}, after {} ticks of another, plays at {}: tick {}",
                    version, app, locked, before, playsAt, tick);
              });
            }
          }
  }
}

// ---- What another watch leaves behind

// A launch watch that is over rests at 1, so a keep-alive after it has one tick less.
TEST_F(WatchRule, AKeepAliveAfterALaunchWatchCountsFromWhatItLeft) {
  for (const bool ranOut : {false, true})
    for (const bool stoppedFromOutside : {false, true}) {
      bootAt(900.0);
      quietly([&] { take(Slot::LaunchWatch); });
      quietly([&] { device.advance(3 * kSecond); });
      int left = 1;
      if (stoppedFromOutside) {
        device.state.app(kPlayer)->running = true;
        quietly([&] { open(device, kPlayer, false); });  // which leaves 0
        device.state.app(kPlayer)->running = false;
        left = 0;
      } else if (ranOut) {
        quietly([&] { device.advance(60 * kSecond); });
      } else {
        stopWatch();
      }
      device.state.front = kOther;
      quietly([&] { processLaunched(device, kPlayer); });
      const auto combination = [&] {
        return fmt::format("ran out {}, stopped from outside {}", ranOut, stoppedFromOutside);
      };
      check<std::vector<std::string>>({}, effectsOf([&] { device.advance((25 - left) * kSecond); }),
                                      combination);
      check<std::vector<std::string>>({sceneCall(kPlayer, true), kInvalidateCall},
                                      effectsOf([&] { device.advance(kSecond); }), combination);
    }
}

}  // namespace
}  // namespace sim
