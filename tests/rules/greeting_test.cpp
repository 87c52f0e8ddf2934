// Which alert greets at the first unlock, for every state of the network.
#include <fmt/format.h>

#include "tests/rules/rule_fixture.hpp"

namespace sim {
namespace {

const std::string kFollowKey = "hasShownWAL";

const std::string kFollowAlert =
    "-[UIAlertView show] \"<3\" \"Thanks for purchasing Corvalen Pro.  People like you make this "
    "community great :). Head over to the Settings panel to configure options.\\n\\nIf you're not "
    "sure what an option does, please make use of the Help toggle provided in the top-right corner "
    "of the panel.\\n\\nP.S. If you haven't already, you might be interested in following me on "
    "Twitter for the occasional tweak update or giveaway. If so, just hit the button below!\" "
    "[\"No thanks!\", \"I'd love to!\"] tag 1";
const std::string kSettingsAlert =
    "-[UIAlertView show] \"<3\" \"Thanks for purchasing Corvalen Pro. People like you make this "
    "community great :).\\n\\nHead over to the Settings panel to configure options. If you're not "
    "sure what an option does, please make use of the Help toggle provided in the top-right corner "
    "of the panel.\" [\"Not right now\", \"Go to Settings\"] tag 0";
const std::string kUpdatedAlert =
    "-[UIAlertView show] \"\" \"Thanks for updating Corvalen Pro!\" [\"<3\"] tag 0";

constexpr std::uint32_t kBits[] = {0x1, 0x2, 0x4, 0x8, 0x10, 0x20, 0x10000, 0x20000, 0x40000};

// The rule.
bool reachable(std::optional<std::uint32_t> flags) {
  if (!flags) return false;
  const auto has = [&](std::uint32_t bit) { return (*flags & bit) != 0; };
  const bool connectsByItself = (has(0x8) || has(0x20)) && !has(0x10);
  return has(0x2) && (!has(0x4) || connectsByItself || has(0x40000));
}

class GreetingRule : public RuleTest {
 protected:
  void tryNetwork(std::optional<std::uint32_t> flags) {
    device.state.networkFlags = flags;
    announceAgain({{kGreetedKey, kAbsent}, {kSwitchKey, kNo}});
    const auto combination = [&] {
      return flags ? fmt::format("network {:#x}", *flags) : std::string("no network");
    };
    check<std::vector<std::string>>(
        {kUnlockCall, kWriteCall, reachable(flags) ? kFollowAlert : kSettingsAlert},
        effectsOf([&] { unlock(device); }), combination);
    quietly([&] { pressButton(device, 0); });
    check<std::vector<std::string>>({kUnlockCall}, effectsOf([&] { unlock(device); }), combination);
  }
};

TEST_F(GreetingRule, HoldsForEveryStateOfTheNetwork) {
  bootAt(1145.15);
  tryNetwork({});
  for (unsigned chosen = 0; chosen < 1u << std::size(kBits); ++chosen) {
    std::uint32_t flags = 0;
    for (std::size_t bit = 0; bit < std::size(kBits); ++bit)
      if (chosen >> bit & 1) flags |= kBits[bit];
    tryNetwork(flags);
    tryNetwork(flags | 0xFFF8FFC0);  // and with every bit that means nothing here
  }
}

// Only whether the markers are there counts, not what they say.
TEST_F(GreetingRule, HoldsForEveryMarker) {
  for (const double version : kVersionsInside) {
    bootAt(version);
    for (const SwitchValue& greeted : kAllSwitchValues)
      for (const SwitchValue& followed : kAllSwitchValues)
        for (const bool network : {false, true}) {
          device.state.networkFlags = network ? 0x2 : 0x0;
          announceAgain(
              {{kGreetedKey, greeted.value}, {kFollowKey, followed.value}, {kSwitchKey, kNo}});
          std::vector<std::string> expected = {kUnlockCall};
          if (greeted.value == kAbsent) {
            expected.push_back(kWriteCall);
            const std::string& welcome = network ? kFollowAlert : kSettingsAlert;
            expected.push_back(followed.value == kAbsent ? welcome : kUpdatedAlert);
          }
          check(expected, effectsOf([&] { unlock(device); }), [&] {
            return fmt::format("version {}, greeted '{}', followed '{}', network {}", version,
                               greeted.value, followed.value, network);
          });
          if (greeted.value == kAbsent) quietly([&] { pressButton(device, 0); });
        }
  }
}

TEST_F(GreetingRule, AnUpdateAsksNothingOfTheNetwork) {
  bootAt(1145.15);
  announceAgain({{kGreetedKey, kAbsent}, {kFollowKey, kNo}});
  calls.wantsAll = true;
  const auto all = effectsOf([&] { unlock(device); });
  EXPECT_TRUE(std::ranges::none_of(
      all, [](const std::string& call) { return call.starts_with("SCNetworkReachability"); }));
  EXPECT_TRUE(std::ranges::count(all, kUpdatedAlert));
}

// SpringBoard restarts the accessory daemons until the greeting's marker is there, whatever it
// says.
TEST_F(GreetingRule, TheMarkerSparesTheDaemonsWhateverItSays) {
  const std::string restart =
      "system(\"killall -9 BTAvrcp; killall -9 BTLEServer; killall -9 iapd;\")";
  for (const double version : {847.2, 900.0, 1240.1, 1280.0})
    for (const SwitchValue& greeted : kAllSwitchValues) {
      device.setVersion(version);
      writeOnly({{kGreetedKey, greeted.value}, {kSwitchKey, kNo}});
      const auto effects = effectsOf([&] { device.bootSpringBoard(); });
      check<long>(greeted.value == kAbsent ? 1 : 0, std::ranges::count(effects, restart),
                  [&] { return fmt::format("version {}, marker '{}'", version, greeted.value); });
    }
}

}  // namespace
}  // namespace sim
