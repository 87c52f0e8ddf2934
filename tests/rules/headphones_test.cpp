// What the headphone jack sets going.
#include <fmt/format.h>

#include "tests/rules/rule_fixture.hpp"

namespace sim {
namespace {

enum class Track { None, Paused, Playing };

struct PlayerValue {
  Written value;
  bool listed = false;
};

const std::string kUnlisted = "com.example.unlisted";

class HeadphonesRule : public RuleTest {
 protected:
  HeadphonesRule() {
    installInert(kPlayer);
    device.state.apps.push_back({kUnlisted, "Unlisted", false});
  }
  struct Situation {
    SwitchValue trigger;
    SwitchValue on;
    PlayerValue player;
    bool appList = true;
    bool hasJack = true;
  };

  // The rule.
  std::vector<std::string> rule(const Situation& s, bool connected, bool inCall, Track track) {
    if (!connected || !s.hasJack || inCall || !s.trigger.on) return {};
    if (!s.on.on || !s.player.listed || !s.appList) return {};
    if (track != Track::None) return {kPlayCall};
    const double version = device.state.version;
    if (version < 847.2 || version > 1280.0) return {};
    return {launchCall(kPlayer, false)};
  }

  void tryOne(const Situation& s) {
    announce({{kHeadphonesKey, s.trigger.value},
              {kSwitchKey, s.on.value},
              {kPlayerKey, s.player.value}});
    for (const bool connected : {true, false})
      for (const bool inCall : {false, true})
        for (const Track track : {Track::None, Track::Paused, Track::Playing}) {
          device.state.inCall = inCall;
          device.state.track.reset();
          if (track != Track::None)
            device.state.track = sim::Track{kMusic, track == Track::Playing};
          check(rule(s, connected, inCall, track),
                effectsOf([&] { headphones(device, connected); }), [&] {
                  return fmt::format(
                      "version {}, trigger '{}', switch '{}', player '{}', AppList {}, jack {}, "
                      "connected {}, in call {}, track {}",
                      device.state.version, s.trigger.value, s.on.value, s.player.value, s.appList,
                      s.hasJack, connected, inCall, static_cast<int>(track));
                });
        }
  }
  void tryEverything(bool appList, bool hasJack) {
    std::vector<PlayerValue> players = {{kAbsent},
                                        {writtenText("")},
                                        {writtenText(kPlayer), true},
                                        {writtenText(kUnlisted)},
                                        {writtenText("com.example.unknown")}};
    for (const Written& noText : kNoTexts) players.push_back({noText});
    for (const PlayerValue& player : players) {
      for (const SwitchValue& trigger : kAllSwitchValues)
        for (const SwitchValue& on : kPlainSwitchValues)
          tryOne({trigger, on, player, appList, hasJack});
      for (const SwitchValue& trigger : kPlainSwitchValues)
        for (const SwitchValue& on : kAllSwitchValues)
          tryOne({trigger, on, player, appList, hasJack});
    }
  }
};

TEST_F(HeadphonesRule, HoldsForEverySettingAndStateOnEveryVersion) {
  for (const double version : kVersionsInside) {
    bootAt(version);
    tryEverything(true, true);
  }
}

TEST_F(HeadphonesRule, HoldsWithoutAppList) {
  for (const double version : {847.2, 1145.15, 1240.1}) {
    bootAt(version);
    removeClass(device, "ALApplicationList");
    tryEverything(false, true);
  }
}

TEST_F(HeadphonesRule, WithoutTheAudioSystemNothingIsEverPluggedIn) {
  removeClass(device, "AVSystemController");
  for (const double version : {847.2, 1280.0}) {
    bootAt(version);
    tryEverything(true, false);
  }
}

// A held track is resumed on a version that has no launcher, too.
TEST_F(HeadphonesRule, OutsideOfTheSupportedVersionsOnlyTheLaunchIsLost) {
  for (const double version : kVersionsOutside) {
    bootAt(1145.15);
    device.setVersion(version);
    tryEverything(true, true);
  }
}

TEST_F(HeadphonesRule, ACallIsAskedForInTheWordsOfTheVersion) {
  for (const double version : kVersionsInside) {
    bootAt(version);
    announceAgain({{kHeadphonesKey, kYes}});
    calls.wantsAll = true;
    const auto all = effectsOf([&] { headphones(device, true); });
    calls.wantsAll = false;
    const bool newer = version >= 1240.1;
    check<std::vector<long>>(
        {newer ? 0 : 1, newer ? 1 : 0},
        {std::ranges::count(all, "-[TUCallCenter inCall]"),
         std::ranges::count(all, "-[TUCallCenter anyCallIsHostedOnCurrentDevice]")},
        [&] { return fmt::format("version {}", version); });
  }
}

}  // namespace
}  // namespace sim
