// What opens the Music replacement app in place of Music, and what ends Music with it.
#include <fmt/format.h>

#include "tests/rules/rule_fixture.hpp"

namespace sim {
namespace {

struct AppValue {
  Written value;
  std::string app;      // the text, if it is one that is not empty
  bool listed = false;  // by AppList, if it is there
};

const std::string kUnlisted = "com.example.unlisted";

std::vector<AppValue> appValues(const std::string& listed) {
  std::vector<AppValue> values = {
      {kAbsent, "", false},
      {writtenText(""), "", false},
      {writtenText(listed), listed, true},
      {writtenText(kUnlisted), kUnlisted, false},
      {writtenText("com.example.unknown"), "com.example.unknown", false}};
  for (const Written& noText : kNoTexts) values.push_back({noText, "", false});
  return values;
}

class MusicReplacementRule : public RuleTest {
 protected:
  MusicReplacementRule() {
    installInert(kPlayer);
    installInert(kReplacement);
    device.state.apps.push_back({kUnlisted, "Unlisted", false});
    device.state.apps.push_back({"", "Nameless", false});  // which no empty setting means
    device.state.addOns = {"Acapella", "Acapella2", "Auxo", "MiniPlayer"};
  }
  struct Action {
    std::string passed;
    std::function<void(Device&)> act;
  };
  static std::vector<Action> opensNowPlaying() {
    const std::string controls = "-[MPUSystemMediaControlsViewController ";
    return {{kTitleCall, tapTitle},
            {controls + "action_OpenApp]", [](Device& d) { widget(d, "Acapella"); }},
            {controls + "action_openapp]", [](Device& d) { widget(d, "Acapella2"); }},
            {"-[MPMiniPlayerActionsDelegate openNowPlayingApp]",
             [](Device& d) { widget(d, "MiniPlayer"); }}};
  }
  static std::vector<std::optional<Track>> tracks() {
    return {{},
            Track{kMusic, false},
            Track{kMusic, true},
            Track{kSpotify, true},
            Track{"com.apple.music", true}};
  }
  static std::string describe(const std::optional<Track>& track) {
    return track ? fmt::format("{} {}", track->app, track->playing) : "none";
  }
  // Both with AppList and, on a device of its own version, without.
  void onEveryDevice(const std::function<void(bool appList)>& body) {
    for (const double version : kVersionsInside)
      for (const bool appList : {true, false}) {
        bootAt(version);
        if (!appList) device.springBoard()->removeClass("ALApplicationList");
        body(appList);
      }
  }
};

TEST_F(MusicReplacementRule, HoldsForTheTitleAndThreeWidgets) {
  onEveryDevice([&](bool appList) {
    for (const SwitchValue& on : kPlainSwitchValues)  // which is not asked
      for (const AppValue& replacement : appValues(kReplacement)) {
        announce({{kSwitchKey, on.value},
                  {kReplacementKey, replacement.value},
                  {kPlayerKey, writtenText(kPlayer)},
                  {kSoundKey, kYes},  // the launch is a plain one all the same
                  {kHiddenUnlockedKey, kYes}});
        for (const auto& track : tracks())
          for (const Action& action : opensNowPlaying()) {
            device.state.track = track;
            const bool redirected = track && track->app == kMusic && replacement.listed && appList;
            check<std::vector<std::string>>(
                {redirected ? launchCall(kReplacement, false) : action.passed},
                effectsOf([&] { action.act(device); }), [&] {
                  return fmt::format(
                      "{}: version {}, AppList {}, switch '{}', replacement '{}', {}",
                      action.passed, device.state.version, appList, on.value, replacement.value,
                      describe(track));
                });
          }
      }
  });
}

// Music can still be the now-playing app after its track has gone.
TEST_F(MusicReplacementRule, AnAppThatHoldsNoTrackIsNoReason) {
  for (const double version : kVersionsInside) {
    bootAt(version, {{kSwitchKey, kNo}, {kReplacementKey, writtenText(kReplacement)}});
    Class& controller = *device.springBoard()->findClass("SBMediaController");
    auto answersNo =
        std::make_shared<NativeCode>(*controller.methods["hasTrack"].implementation.native);
    answersNo->run = [](Invocation&) { return Value::boolean(false); };
    controller.methods["hasTrack"].implementation.native = answersNo;
    device.state.track = Track{kMusic, false};
    for (const Action& action : opensNowPlaying())
      check<std::vector<std::string>>({action.passed}, effectsOf([&] { action.act(device); }), [&] {
        return fmt::format("{}: version {}", action.passed, version);
      });
  }
}

TEST_F(MusicReplacementRule, HoldsForAuxo) {
  onEveryDevice([&](bool appList) {
    for (const SwitchValue& on :
         device.state.version == 1145.15 ? kAllSwitchValues : kPlainSwitchValues)
      for (const AppValue& replacement : appValues(kReplacement))
        for (const AppValue& player : appValues(kPlayer)) {
          announce({{kSwitchKey, on.value},
                    {kReplacementKey, replacement.value},
                    {kPlayerKey, player.value}});
          for (const auto& track : tracks())
            for (const auto& app : {kMusic, kSpotify, std::string("com.apple.music")})
              for (const bool cell : {false, true}) {
                device.state.track = track;
                std::vector<std::string> expected = {
                    "-[AuxoCollectionView activateApplicationWithDisplayIdentifier:\"" + app +
                    "\" fromCell:" + (cell ? "<AuxoCell>]" : "nil]")};
                if (!cell && app == kMusic && appList) {
                  if (track && replacement.listed) expected = {launchCall(kReplacement, false)};
                  if (!track && on.on && player.listed) expected = {launchCall(kPlayer, false)};
                  if (!track && on.on && player.app.empty()) expected.clear();
                }
                check(expected, effectsOf([&] { auxoWidget(device, app, cell); }), [&] {
                  return fmt::format(
                      "version {}, AppList {}, switch '{}', replacement '{}', player '{}', {}, "
                      "activates {}, cell {}",
                      device.state.version, appList, on.value, replacement.value, player.value,
                      describe(track), app, cell);
                });
              }
        }
  });
}

// Music ends with the card of its replacement: before it on the oldest switcher, else after it.
TEST_F(MusicReplacementRule, HoldsForEveryCardThatIsThrownOut) {
  const std::string kill = "system(\"killall -9 Music\")";
  const std::string switcher = "-[SBAppSwitcherModel ";
  onEveryDevice([&](bool appList) {  // which is not asked either
    const double version = device.state.version;
    for (const SwitchValue& on : kPlainSwitchValues)
      for (const AppValue& replacement : appValues(kReplacement)) {
        announce({{kSwitchKey, on.value},
                  {kReplacementKey, replacement.value},
                  {kPlayerKey, writtenText(kPlayer)}});
        for (std::size_t card = 0; card < device.state.apps.size(); ++card) {
          const std::string app = device.state.apps[card].identifier;
          std::vector<std::string> expected;
          if (!app.empty() && app == replacement.app) expected.push_back(kill);
          if (version < 900.0)
            expected.push_back(fmt::format("-[SBAppSliderController _quitAppAtIndex:{}]", card));
          else
            expected.insert(expected.begin(),
                            switcher + (version < 1240.1 ? "removeDisplayItem:" : "remove:") +
                                "<SBDisplayItem>]");
          check(expected, effectsOf([&] { quitCard(device, app); }), [&] {
            return fmt::format("version {}, AppList {}, switch '{}', replacement '{}', card of {}",
                               version, appList, on.value, replacement.value, app);
          });
        }
      }
  });
}

}  // namespace
}  // namespace sim
