// What makes SpringBoard forget a launch that waits for the unlock, and a start that is not to be
// answered: every event, whatever waits.
#include "tests/rules/rule_fixture.hpp"

namespace sim {
namespace {

enum class Waits { Nothing, Player, Replacement };

// What an event does to the launch that waits, and to the suppressed answer.
enum class Launch { Stays, Forgotten, BecomesPlayer };
enum class Answer { Stays, Given, Suppressed };

struct Event {
  const char* name;
  Launch launch;
  Answer answer;
  std::function<void(Device&)> happen;
};

void post(Device& device, const char* name) {
  device.postDarwin(name);
  device.drain();
}

// While something plays that is neither Music nor anybody else's business.
std::vector<Event> events() {
  std::vector<Event> all;
  const auto add = [&](const std::string& name, Launch launch, Answer answer,
                       std::function<void(Device&)> happen) {
    static std::list<std::string> names;
    all.push_back({names.emplace_back(name).c_str(), launch, answer, std::move(happen)});
  };
  const auto forgets = [&](const std::string& name, std::function<void(Device&)> happen) {
    add(name, Launch::Forgotten, Answer::Given, std::move(happen));
  };
  const auto leaves = [&](const std::string& name, std::function<void(Device&)> happen) {
    add(name, Launch::Stays, Answer::Stays, std::move(happen));
  };
  // Only hiding the passcode with animation and without completion is turning away.
  for (unsigned bits = 0; bits < 8; ++bits) {
    const bool visible = bits & 1, animated = bits & 2, completion = bits & 4;
    const auto name = fmt::format("passcode {} {} {}", visible, animated, completion);
    const auto happen = [=](Device& device) { passcode(device, visible, animated, completion); };
    if (!visible && animated && !completion)
      forgets(name, happen);
    else
      leaves(name, happen);
  }
  forgets("display off", [](Device& device) { displayOff(device); });
  forgets("a drag", [](Device& device) { dragLockScreen(device); });
  for (long control = 0; control < 6; ++control)
    forgets(fmt::format("control {}", control),
            [=](Device& device) { tapTransport(device, control); });
  forgets("the title", [](Device& device) { tapTitle(device); });
  for (unsigned command = 0; command < 6; ++command) {
    const auto happen = [=](Device& device) { remote(device, command); };
    if (command == 0 || command == 2)
      forgets(fmt::format("command {}", command), happen);
    else
      leaves(fmt::format("command {}", command), happen);
  }
  forgets("a card is quit", [](Device& device) { quitCard(device, kMusic); });
  for (const char* addOn : {"Acapella", "Acapella2", "MiniPlayer"})
    forgets(addOn, [=](Device& device) { widget(device, addOn); });
  for (const bool cell : {true, false})
    forgets(fmt::format("Auxo, cell {}", cell),
            [=](Device& device) { auxoWidget(device, "com.example.notes", cell); });
  forgets("the watch's request", [](Device& device) { post(device, "FejJ91yPhXo8E"); });
  // Another app's request takes the place of what waited.
  add("another app's request", Launch::BecomesPlayer, Answer::Given,
      [](Device& device) { post(device, "VNutj2BhJMTGTwVk"); });
  // Headphones forget the launch alone.
  add("headphones in", Launch::Forgotten, Answer::Stays,
      [](Device& device) { headphones(device, true); });
  leaves("headphones out", [](Device& device) { headphones(device, false); });
  leaves("headphones in a call", [](Device& device) {
    device.state.inCall = true;
    headphones(device, true);
    device.state.inCall = false;
  });
  leaves("a reload", [](Device& device) { post(device, "bfaK8ayWXeXMQum"); });
  leaves("now playing", [](Device& device) { nowPlaying(device, true); });
  leaves("nothing playing", [](Device& device) { nowPlaying(device, false); });
  leaves("a launch by the system", [](Device& device) { open(device, kMusic, false); });
  leaves("a hidden launch by the system", [](Device& device) { open(device, kMusic, true); });
  leaves("an icon", [](Device& device) { tapIcon(device, kMusic); });
  for (const std::string& player : {kSpotify, kPodcasts})
    add("the icon of " + player, Launch::Stays, Answer::Suppressed,
        [player](Device& device) { tapIcon(device, player); });
  leaves("a process", [](Device& device) { processLaunched(device, kMusic); });
  leaves("a title view", [](Device& device) {
    newTitleView(device, "view");
    showInTitleView(device, "view", "name");
    freeTitleView(device, "view");
  });
  leaves("time", [](Device& device) { device.advance(60'000'000); });
  // A player's start uses the suppression up.
  add("a player's start", Launch::Stays, Answer::Given,
      [](Device& device) { post(device, "QjnUR4g9fc9hLq"); });
  return all;
}

class ResetRule : public RuleTest {
 protected:
  void begin(double version) {
    device.state.addOns = {"Acapella", "Acapella2", "Auxo", "MiniPlayer"};
    boot(version);
    announce({{"iea9AQXrEmhSZ4u", yes(true)},
              {"2I8UQMOAwU5nnNZt", "<string>com.example.listed</string>"},
              {"RjNkaiHs98230Xx", "<string>com.example.replacement</string>"},
              {"LyyY0YZw4enaXR6S", yes(true)},
              {"AiPVzGZ3tdh2fBpXy", yes(true)},
              {"I9gqmWG8wXu6", yes(true)},
              {"feo63OPBmERAd2000UpdRdCAND", yes(true)}});
  }
  void bring(Waits waits, bool suppressed) {
    device.state.locked = true;
    device.state.track.reset();
    displayOff(device);  // forgets what was there before
    if (waits == Waits::Player) remote(device, 0);
    if (waits == Waits::Replacement) {
      device.state.track = Track{kMusic, true};
      tapTitle(device);
    }
    if (suppressed) tapIcon(device, kSpotify);  // not installed: nothing starts
    device.state.track = Track{"com.example.notes", true};
    device.drain();
  }
  bool startIsAnswered() {
    const Effects effects = effectsOf([&] { post(device, "QjnUR4g9fc9hLq"); });
    return std::ranges::count(effects, R"(notify_post("GYbIKwUwyBsCan1l"))") > 0;
  }
  // Which app the unlock launches.
  Waits launchedAtUnlock() {
    const Effects effects = effectsOf([&] { unlock(device); });
    if (std::ranges::count(effects, launch(kListed, false)) > 0) return Waits::Player;
    if (std::ranges::count(effects, launch(kReplacement, false)) > 0) return Waits::Replacement;
    return Waits::Nothing;
  }
};

TEST_F(ResetRule, EveryEventForgetsWhatItMustAndNoMore) {
  for (const double version : {847.2, 847.24, 900.0, 1145.15, 1240.1, 1280.0}) {
    begin(version);
    for (const Event& event : events())
      for (const Waits waits : {Waits::Nothing, Waits::Player, Waits::Replacement})
        for (const bool suppressed : {false, true}) {
          ++combinations;
          const auto situation =
              fmt::format("{}, version {}, waiting {}, suppressed {}", event.name, version,
                          static_cast<int>(waits), suppressed);
          bring(waits, suppressed);
          event.happen(device);
          device.drain();
          device.state.track.reset();
          const bool answered =
              event.answer == Answer::Given || (event.answer == Answer::Stays && !suppressed);
          EXPECT_EQ(startIsAnswered(), answered) << situation;
          Waits left = waits;
          if (event.launch == Launch::Forgotten) left = Waits::Nothing;
          if (event.launch == Launch::BecomesPlayer) left = Waits::Player;
          EXPECT_EQ(launchedAtUnlock(), left) << situation;
          EXPECT_EQ(launchedAtUnlock(), Waits::Nothing) << "again, " << situation;
          if (HasFailure()) return;
        }
  }
  EXPECT_EQ(combinations, 6u * 6 * events().size());
}

// Between request and unlock the user may turn redirection off, or the app may go.
TEST_F(ResetRule, WhatWaitsIsLaunchedOnlyIfItStillMayBe) {
  begin(1145.15);
  for (const Waits waits : {Waits::Player, Waits::Replacement})
    for (const bool enabled : {true, false})
      for (const bool listed : {true, false})
        for (const bool appList : {true, false}) {
          ++combinations;
          setAppList(true);
          for (const auto& app : {kListed, kReplacement}) device.state.app(app)->listed = true;
          begin(1145.15);
          bring(waits, false);
          announce({{"iea9AQXrEmhSZ4u", yes(enabled)},
                    {"2I8UQMOAwU5nnNZt", "<string>com.example.listed</string>"},
                    {"RjNkaiHs98230Xx", "<string>com.example.replacement</string>"},
                    {"feo63OPBmERAd2000UpdRdCAND", yes(true)}});
          for (const auto& app : {kListed, kReplacement}) device.state.app(app)->listed = listed;
          setAppList(appList);
          // The switch is the preferred player's alone.
          const bool may = listed && appList && (enabled || waits == Waits::Replacement);
          EXPECT_EQ(launchedAtUnlock(), may ? waits : Waits::Nothing)
              << static_cast<int>(waits) << enabled << listed << appList;
        }
  EXPECT_EQ(combinations, 16u);
}

}  // namespace
}  // namespace sim
