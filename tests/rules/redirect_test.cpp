// Who gets a play request: the platform, the preferred player, or nobody.
#include <fmt/format.h>

#include "sim/foundation/dictionary.hpp"
#include "tests/rules/rule_fixture.hpp"

namespace sim {
namespace {

enum class Track { None, Paused, Playing };
enum class Verdict { Redirect, PassThrough, Swallow };

struct PlayerValue {
  Written value;
  bool chosen = false;  // a text that is not empty
  bool listed = false;  // by AppList, if it is there
};

const std::string kUnlisted = "com.example.unlisted";

std::vector<PlayerValue> playerValues() {
  std::vector<PlayerValue> values = {
      {kAbsent, false, false},
      {writtenText(""), false, false},
      {writtenText(kPlayer), true, true},
      {writtenText(kUnlisted), true, false},
      {writtenText("com.example.unknown"), true, false},
      {writtenText("com.example.Player"), true, false},  // case counts
      {writtenText(kPlayer + " "), true, false},
  };
  for (const Written& noText : kNoTexts) values.push_back({noText, false, false});
  return values;
}

// The rule.
Verdict verdict(Track track, bool on, const PlayerValue& player, bool appList) {
  if (track != Track::None || !on) return Verdict::PassThrough;
  if (player.chosen && player.listed && appList) return Verdict::Redirect;
  return player.chosen ? Verdict::PassThrough : Verdict::Swallow;
}

bool supported(double version) { return version >= 847.2 && version <= 1280.0; }
long playType(double version) { return version >= 1145.15 && version <= 1280.0 ? 3 : 4; }

class RedirectRule : public RuleTest {
 protected:
  RedirectRule() {
    installInert(kPlayer);
    device.state.apps.push_back({kUnlisted, "Unlisted", false});
  }
  void hold(Track track) {
    device.state.track.reset();
    if (track != Track::None) device.state.track = sim::Track{kMusic, track == Track::Playing};
  }
  // The effects of a request that is `passed` to the platform, or else launches the player.
  std::vector<std::string> effects(Verdict verdict, const std::string& passed) const {
    if (verdict == Verdict::PassThrough) return {passed};
    if (verdict == Verdict::Swallow || !supported(device.state.version)) return {};
    return {launchCall(kPlayer, false)};
  }

  // Every trigger, with the device and the settings as they are.
  void tryTriggers(const std::function<Verdict()>& rule, const std::string& situation) {
    const Verdict expected = rule();
    for (long type = 0; type <= 6; ++type) {
      const auto actual = effectsOf([&] { tapTransport(device, type); });
      const bool play = type == playType(device.state.version);
      check(effects(play ? expected : Verdict::PassThrough, transportCall(type)), actual,
            [&] { return fmt::format("control type {}, {}", type, situation); });
    }
    for (const unsigned command : {0u, 1u, 2u, 3u, 4u, 5u, 256u, 258u, 4294967295u}) {
      const bool play = command == 0 || command == 2;
      const Verdict wanted = play ? expected : Verdict::PassThrough;
      for (const bool options : {false, true}) {
        const auto combination = [&] {
          return fmt::format("command {} {} options, {}", command, options ? "with" : "without",
                             situation);
        };
        std::optional<bool> answer;
        const auto actual = effectsOf([&] { answer = send(command, options); });
        check(effects(wanted, commandCall(command, options ? "<NSDictionary>" : "nil")), actual,
              combination);
        check<std::optional<bool>>(wanted == Verdict::PassThrough, answer, combination);
      }
    }
  }

  void tryEverything(const std::vector<SwitchValue>& switchValues, bool appList) {
    for (const SwitchValue& on : switchValues)
      for (const PlayerValue& player : playerValues()) {
        announce({{kSwitchKey, on.value}, {kPlayerKey, player.value}});
        for (const Track track : {Track::None, Track::Paused, Track::Playing}) {
          hold(track);
          tryTriggers([&] { return verdict(track, on.on, player, appList); },
                      fmt::format("version {}, switch '{}', player '{}', AppList {}, track {}",
                                  device.state.version, on.value, player.value, appList,
                                  static_cast<int>(track)));
        }
      }
  }

 private:
  std::optional<bool> send(unsigned command, bool options) {
    if (!options) return remote(device, command);
    Process& process = *device.springBoard();
    std::optional<bool> answer;
    device.callback(process, [&] {
      const auto dictionary = makeDictionary(process);
      answer = process
                   .callFunction("MRMediaRemoteSendCommand", {Value::integer(Kind::UInt32, command),
                                                              Value::object(dictionary->address)})
                   .asBool();
    });
    return answer;
  }
};

TEST_F(RedirectRule, HoldsForEveryKindOfSettingOnEveryVersion) {
  for (const double version : kVersionsInside) {
    bootAt(version);
    tryEverything(kAllSwitchValues, true);
  }
}

TEST_F(RedirectRule, HoldsWithoutAppList) {
  for (const double version : kVersionsInside) {
    bootAt(version);
    removeClass(device, "ALApplicationList");
    tryEverything(kAllSwitchValues, false);
  }
}

TEST_F(RedirectRule, OutsideOfTheSupportedVersionsARedirectedRequestIsLost) {
  for (const double version : kVersionsOutside) {
    bootAt(1145.15);
    device.setVersion(version);
    tryEverything(kAllSwitchValues, true);
  }
}

}  // namespace
}  // namespace sim
