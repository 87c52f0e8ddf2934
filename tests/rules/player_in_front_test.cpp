// The preferred player on its way to the front, and its name where the user reads what will play.
#include <fmt/format.h>

#include "tests/rules/rule_fixture.hpp"

namespace sim {
namespace {

class PlayerInFrontRule : public RuleTest {
 protected:
  PlayerInFrontRule() {
    for (const auto& app : {kPlayer, kOther, kSpotify, std::string()}) installInert(app);
  }
  static std::vector<Written> players() {
    std::vector<Written> all = {kAbsent, writtenText(""), writtenText(kPlayer), writtenText(kOther),
                                writtenText("com.example.unknown")};
    all.insert(all.end(), kNoTexts.begin(), kNoTexts.end());
    return all;
  }
  // The slot for a watch is empty, or taken by one of the kind that the version has.
  void setWatch(bool watching) {
    device.state.track = Track{kMusic, true};
    device.state.front.reset();
    quietly([&] { device.advance(1'000'000); });
    device.state.track.reset();
    if (!watching) return;
    device.state.app(kPlayer)->running = false;
    announce({{kSwitchKey, kYes}, {kPlayerKey, writtenText(kPlayer)}, {kHiddenUnlockedKey, kYes}});
    quietly([&] {
      if (device.state.version < 900.0)
        remote(device, 0);
      else
        processLaunched(device, kPlayer);
    });
  }
  static std::string iconCall() { return "-[SBIconController _launchIcon:<SBApplicationIcon>]"; }
};

// By its icon, by a launch in front, and by a launch that stays behind.
TEST_F(PlayerInFrontRule, ARunningPlayerLeavesTheBackgroundFirst) {
  enum class Way { Icon, InFront, Suspended };
  for (const double version : kVersionsInside) {
    bootAt(version);
    for (const SwitchValue& on : version == 1145.15 ? kAllSwitchValues : kPlainSwitchValues)
      for (const Written& player : players())
        for (const auto& app :
             {kPlayer, kOther, kSpotify, std::string("com.example.unknown"), std::string()})
          for (const Way way : {Way::Icon, Way::InFront, Way::Suspended})
            for (unsigned bits = 0; bits < 1u << 2; ++bits) {
              const bool running = bits & 1;
              const bool watching = bits & 2;
              setWatch(watching);
              announce({{kSwitchKey, on.value}, {kPlayerKey, player}});
              for (App& each : device.state.apps) each.running = running;
              const bool known = app != "com.example.unknown";
              const bool acts =
                  version >= 900.0 && on.on && player == writtenText(app) && running && known;
              std::vector<std::string> leaves;
              if (acts && watching) leaves.push_back(kInvalidateCall);
              if (acts) leaves.push_back(sceneCall(app, true));
              std::vector<std::string> expected;
              // An icon without a name is no player's; a launch compares as it is.
              if (way == Way::InFront || (way == Way::Icon && !app.empty())) expected = leaves;
              if (way == Way::Icon) {
                expected.push_back(iconCall());
                // The icon's own launch asks once more; the watch is mostly gone by then.
                if (app.empty()) expected.insert(expected.end(), leaves.begin(), leaves.end());
                if (!app.empty() && acts) expected.push_back(sceneCall(app, true));
              }
              expected.push_back(launchCall(app, way == Way::Suspended));
              check(expected, effectsOf([&] {
                      if (way == Way::Icon)
                        tapIcon(device, app);
                      else
                        open(device, app, way == Way::Suspended);
                    }),
                    [&] {
                      return fmt::format(
                          "version {}, switch '{}', player '{}', opens {} way {}, running {}, "
                          "watching {}",
                          version, on.value, player, app, static_cast<int>(way), running, watching);
                    });
            }
  }
}

// A player that AppList does not list, or that no AppList is there to list, has its name all the
// same.
TEST_F(PlayerInFrontRule, ItsNameIsShownWhereverATitleViewShowsOne) {
  const auto shown = [](const std::string& quoted) {
    return "-[MPUMediaControlsTitlesView updateNowPlayingAppDisplayName:" + quoted + "]";
  };
  for (const double version : kVersionsInside) {
    bootAt(version);
    device.state.app(kOther)->listed = false;
    const bool hooked = version >= 847.24;
    for (const int views : {0, 1, 2, 15, 16, 17, 33})
      for (const SwitchValue& on : version == 1145.15 ? kAllSwitchValues : kPlainSwitchValues)
        for (const Written& player : players()) {
          for (int view = 0; view < views; ++view) newTitleView(device, fmt::format("{}", view));
          newTitleView(device, "gone");
          freeTitleView(device, "gone");
          std::string name = "\"\"";
          for (const auto& app : {kPlayer, kOther})
            if (player == writtenText(app)) name = "\"" + app + "\"";
          if (player == writtenText("com.example.unknown")) name = "nil";
          const auto combination = [&] {
            return fmt::format("version {}, {} views, switch '{}', player '{}'", version, views,
                               on.value, player);
          };
          // A reload shows it at once, in each that lives.
          std::vector<std::string> expected = {kReadCall};
          if (hooked && on.on)
            expected.insert(expected.end(), static_cast<std::size_t>(views), shown(name));
          check(expected, effectsOf([&] {
                  announceAgain({{kSwitchKey, on.value}, {kPlayerKey, player}});
                }),
                combination);
          // Whatever the platform wants to show.
          for (const std::string text : {"Music", ""}) {
            if (views == 0) continue;
            const std::string platforms = "\"" + text + "\"";
            check<std::vector<std::string>>({shown(hooked && on.on ? name : platforms)},
                                            effectsOf([&] { showInTitleView(device, "0", text); }),
                                            combination);
          }
          for (int view = 0; view < views; ++view) freeTitleView(device, fmt::format("{}", view));
        }
    device.state.app(kOther)->listed = true;
  }
}

// Each look-up of an app in the words of the version, and by icon once more in the newer ones.
TEST_F(PlayerInFrontRule, ItIsLookedUpInTheWordsOfTheVersion) {
  struct Lookup {
    const char* name;
    std::function<void(Device&)> act;
    long byVersion = 0;  // times, in the words of the version
    long newer = 0;      // times, in the newer words whatever the version
  };
  for (const double version : kVersionsInside) {
    bootAt(version, {{kSwitchKey, kYes}, {kPlayerKey, writtenText(kPlayer)}});
    newTitleView(device, "a");
    device.state.app(kPlayer)->running = true;
    const bool scenes = version >= 900.0;
    const std::vector<Lookup> lookups = {
        {"launch", [](Device& d) { d.postDarwin(kLaunchRequest); }, scenes ? 2 : 1, 0},
        {"open", [](Device& d) { open(d, kPlayer, false); }, scenes ? 1 : 0, 0},
        {"open suspended", [](Device& d) { open(d, kPlayer, true); }, 0, 0},
        {"icon", [](Device& d) { tapIcon(d, kPlayer); }, scenes ? 2 : 1, scenes ? 1 : 0},
        {"title", [](Device& d) { showInTitleView(d, "a", "Music"); }, version >= 847.24 ? 1 : 0,
         0},
    };
    for (const Lookup& lookup : lookups) {
      calls.wantsAll = true;
      const auto all = effectsOf([&] { lookup.act(device); });
      calls.wantsAll = false;
      const std::string start = "-[SBApplicationController applicationWith";
      const std::string end = "Identifier:\"" + kPlayer + "\"]";
      const bool newest = version >= 1240.1;
      check<std::vector<long>>(
          {newest ? 0 : lookup.byVersion, lookup.newer + (newest ? lookup.byVersion : 0)},
          {std::ranges::count(all, start + "Display" + end),
           std::ranges::count(all, start + "Bundle" + end)},
          [&] { return fmt::format("{}: version {}", lookup.name, version); });
    }
  }
}

}  // namespace
}  // namespace sim
