// What a launch that waits for the unlock opens then.
#include <fmt/format.h>

#include "tests/rules/rule_fixture.hpp"

namespace sim {
namespace {

class PendingLaunchRule : public RuleTest {
 protected:
  struct Situation {
    double version = 0;
    bool replacement = false;  // waits for the Music replacement app, not for the preferred player
    SwitchValue on;
    Written player;
    Written music;
    bool appList = false;
    bool playerListed = false;
    bool replacementListed = false;
    bool running = false;
  };

  PendingLaunchRule() {
    installInert(kPlayer);
    installInert(kReplacement);
  }
  void tryOne(const Situation& s) {
    leavePending(s.replacement);
    announce({{kSwitchKey, s.on.value}, {kPlayerKey, s.player}, {kReplacementKey, s.music}});
    list(s.playerListed, s.replacementListed);
    for (const auto& app : {kPlayer, kReplacement}) device.state.app(app)->running = s.running;
    Process& process = *device.springBoard();
    Class* appList = process.findClass("ALApplicationList");
    if (!s.appList) process.removeClass("ALApplicationList");
    const auto combination = [&] {
      return fmt::format(
          "version {}, pending replacement {}, switch '{}', player '{}', replacement '{}', AppList "
          "{}, player listed {}, replacement listed {}, running {}",
          s.version, s.replacement, s.on.value, s.player, s.music, s.appList, s.playerListed,
          s.replacementListed, s.running);
    };
    check(expected(s), effectsOf([&] { unlock(device); }), combination);
    check<std::vector<std::string>>({kUnlockCall}, effectsOf([&] { unlock(device); }), combination);
    if (!s.appList) process.registerClass(*appList);
    list(true, true);
  }

 private:
  static std::vector<std::string> expected(const Situation& s) {
    std::vector<std::string> effects = {kUnlockCall};
    const Written& chosen = s.replacement ? s.music : s.player;
    if (!s.replacement && !s.on.on) return effects;
    for (const auto& [app, listed] :
         {std::pair(kPlayer, s.playerListed), std::pair(kReplacement, s.replacementListed)}) {
      if (chosen != writtenText(app) || !listed || !s.appList) continue;
      if (s.version >= 900.0 && s.on.on && s.player == chosen && s.running)
        effects.push_back(sceneCall(app, true));
      effects.push_back(launchCall(app, false));
    }
    return effects;
  }
  void leavePending(bool replacement) {
    device.state.locked = true;
    announce({{kSwitchKey, kYes},
              {kPlayerKey, writtenText(kPlayer)},
              {kReplacementKey, writtenText(kReplacement)}});
    device.state.track.reset();
    if (replacement) device.state.track = Track{kMusic, true};
    const auto effects =
        effectsOf([&] { replacement ? tapTitle(device) : void(remote(device, 0)); });
    ASSERT_EQ(effects.size(), 2u);
  }
  void list(bool player, bool replacement) {
    device.state.app(kPlayer)->listed = player;
    device.state.app(kReplacement)->listed = replacement;
  }
};

// What waits for the unlock is looked up when the unlock comes.
TEST_F(PendingLaunchRule, AnUnlockLaunchesWhatIsChosenAndListedThen) {
  const std::vector<Written> choices = {kAbsent,
                                        writtenText(""),
                                        writtenText(kPlayer),
                                        writtenText(kReplacement),
                                        writtenText(kOther),
                                        "<integer>7</integer>"};
  for (const double version : {847.2, 899.999999999999, 900.0, 1240.099999999999, 1240.1, 1280.0}) {
    bootAt(version);
    for (const SwitchValue& on : kPlainSwitchValues)
      for (const Written& player : choices)
        for (const Written& music : choices)
          for (unsigned bits = 0; bits < 1u << 5; ++bits) {
            const auto bit = [&](unsigned which) { return (bits >> which & 1) != 0; };
            tryOne({version, bit(0), on, player, music, bit(1), bit(2), bit(3), bit(4)});
          }
  }
}

}  // namespace
}  // namespace sim
