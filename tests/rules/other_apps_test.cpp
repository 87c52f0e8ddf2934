// What becomes of a media command in an app, and of a watch's command.
#include <fmt/format.h>

#include "tests/rules/rule_fixture.hpp"

namespace sim {
namespace {

const std::string kNotes = "com.example.notes";

class OtherAppRule : public RuleTest {
 protected:
  enum class Fate { Passed, Posted, Dropped };

  // The rule, for an app that was told that something plays, or not.
  static Fate fate(unsigned command, bool told, bool on, bool chosen) {
    if ((command != 0 && command != 2) || told || !on) return Fate::Passed;
    return chosen ? Fate::Posted : Fate::Dropped;
  }

  // The settings file is read anew at each play command and at no other.
  void tryCommands(bool told, bool on, bool chosen, const std::string& situation) {
    for (const unsigned command : {0u, 1u, 2u, 3u, 4u, 5u, 6u, 256u, 258u, 4294967295u}) {
      const Fate wanted = fate(command, told, on, chosen);
      std::vector<std::string> expected;
      if (command == 0 || command == 2) expected.push_back(kReadCall);
      if (wanted == Fate::Passed) expected.push_back(commandCall(command));
      if (wanted == Fate::Posted) expected.push_back(postCall(kLaunchRequest));
      const auto combination = [&] { return fmt::format("command {}, {}", command, situation); };
      std::optional<bool> answer;
      check(expected, effectsOf([&] { answer = remoteIn(device, command, kNotes); }), combination);
      check<std::optional<bool>>(wanted == Fate::Passed, answer, combination);
    }
  }
  void startNotes(double version) {
    device.setVersion(version);
    if (Process* old = device.process(kNotes)) device.endProcess(*old);
    device.startApp(kNotes);
  }
};

TEST_F(OtherAppRule, HoldsForEveryCommandSettingAndThingTold) {
  struct Player {
    Written value;
    bool chosen = false;
  };
  // The player need not be installed: the app does not ask.
  std::vector<Player> players = {
      {kAbsent, false}, {writtenText(""), false}, {writtenText(kPlayer), true}};
  for (const Written& noText : kNoTexts) players.push_back({noText, false});
  const std::vector<std::vector<std::string>> told = {{},
                                                      {kSomethingPlays},
                                                      {kNothingPlays},
                                                      {kSomethingPlays, kNothingPlays},
                                                      {kNothingPlays, kSomethingPlays},
                                                      {kSomethingPlays, kSomethingPlays},
                                                      {kSomethingPlays, kSettingsChanged},
                                                      {kStartPlaying}};
  device.state.apps.push_back({kNotes, "Notes"});
  for (const double version : kVersionsInside)
    for (const auto& signals : told) {
      startNotes(version);
      for (const std::string& signal : signals) quietly([&] { device.postDarwin(signal); });
      const bool plays =
          std::ranges::count(signals, kSomethingPlays) > 0 && signals.back() != kNothingPlays;
      for (const SwitchValue& on : kAllSwitchValues)
        for (const Player& player : players) {
          writeOnly({{kSwitchKey, on.value}, {kPlayerKey, player.value}});
          tryCommands(plays, on.on, player.chosen,
                      fmt::format("version {}, told {}, switch '{}', player '{}'", version,
                                  fmt::join(signals, " then "), on.value, player.value));
        }
    }
}

TEST_F(OtherAppRule, WithoutAReadableFileEverythingPasses) {
  device.state.apps.push_back({kNotes, "Notes"});
  startNotes(1145.15);
  for (const bool told : {false, true}) {
    if (told) quietly([&] { device.postDarwin(kSomethingPlays); });
    scenario::removeSettings(device);
    tryCommands(told, false, false, "no file");
    for (const std::string bytes : {"", "nonsense", "<plist><array/></plist>", "bplist00"}) {
      scenario::writeSettings(device, bytes);
      tryCommands(told, false, false, "the file '" + bytes + "'");
    }
  }
}

// An app of an unsupported version has no hook, and one that lives on keeps it.
TEST_F(OtherAppRule, OnlyTheVersionAtTheStartCounts) {
  device.state.apps.push_back({kNotes, "Notes"});
  writeOnly({{kSwitchKey, kYes}, {kPlayerKey, writtenText(kPlayer)}});
  for (const double outside : kVersionsOutside) {
    startNotes(outside);
    for (unsigned command = 0; command <= 6; ++command)
      check<std::vector<std::string>>(
          {commandCall(command)}, effectsOf([&] { remoteIn(device, command, kNotes); }),
          [&] { return fmt::format("version {}, command {}", outside, command); });
    startNotes(1145.15);
    device.setVersion(outside);
    tryCommands(false, true, true, fmt::format("version {} by now", outside));
  }
}

TEST_F(OtherAppRule, EveryCommandOfAWatch) {
  device.state.apps.push_back({kGarmin, "Connect"});
  const auto rule = [](long command) -> std::string {
    const auto value = static_cast<std::uint32_t>(command);  // all that the app's method takes
    if (value == 0) return postCall(kToggleRequest);
    if (value == 1) return commandCall(4);
    if (value == 2) return commandCall(5);
    return fmt::format("-[GCMMusicController didReceiveCommand:{}]", value);
  };
  for (const double version : kVersionsInside) {
    device.setVersion(version);
    if (Process* old = device.process(kGarmin)) device.endProcess(*old);
    device.startApp(kGarmin);
    for (const SwitchValue& on : kPlainSwitchValues) {
      writeOnly({{kSwitchKey, on.value}, {kPlayerKey, writtenText(kPlayer)}});  // does not matter
      for (const long command : {0L, 1L, 2L, 3L, 4L, 5L, 6L, 255L, 256L, 258L, 4294967295L,
                                 4294967296L, 4294967297L, 4294967298L, 4294967299L})
        check<std::vector<std::string>>(
            {rule(command)}, effectsOf([&] { watchCommand(device, command); }), [&] {
              return fmt::format("version {}, switch '{}', command {}", version, on.value, command);
            });
      for (const unsigned command : {0u, 1u, 2u, 3u})  // its own commands are the platform's
        check<std::vector<std::string>>(
            {commandCall(command)}, effectsOf([&] { remoteIn(device, command, kGarmin); }),
            [&] { return fmt::format("version {}, own command {}", version, command); });
    }
  }
}

}  // namespace
}  // namespace sim
