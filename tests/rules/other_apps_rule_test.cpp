// What a play command sent inside an ordinary app leads to, and what Garmin Connect makes of its
// watch's commands: every combination of what is read.
#include "tests/rules/rule_fixture.hpp"

namespace sim {
namespace {

const std::string kApp = "com.example.ordinary";

enum class Outcome { PassedOn, AsksSpringBoard, Dropped };

class OtherAppsRule : public RuleTest {
 protected:
  OtherAppsRule() {
    for (const std::string& app : {kApp, kGarmin}) {
      device.state.apps.push_back({app, app});
      device.startApp(app);
    }
    device.drain();
  }
  // The rule. AppList is not asked: whether the player can be launched is SpringBoard's to know.
  static Outcome ruled(unsigned command, bool nowPlaying, bool enabled, bool chosen) {
    if (command != 0 && command != 2) return Outcome::PassedOn;
    if (nowPlaying || !enabled) return Outcome::PassedOn;
    return chosen ? Outcome::AsksSpringBoard : Outcome::Dropped;
  }
  void sendEverything(bool nowPlaying, bool enabled, bool chosen, const std::string& situation) {
    for (unsigned command = 0; command <= 7; ++command, ++combinations) {
      const Outcome outcome = ruled(command, nowPlaying, enabled, chosen);
      std::optional<bool> answer;
      Effects effects = effectsOf([&] { answer = remoteIn(device, command, kApp); });
      device.drain();
      // Reading the file is how it finds out.
      std::erase_if(effects,
                    [](const auto& effect) { return effect.starts_with("-[NSMutableDict"); });
      Effects left;
      if (outcome == Outcome::PassedOn)
        left = {fmt::format("MRMediaRemoteSendCommand({}, nil)", command)};
      if (outcome == Outcome::AsksSpringBoard) left = {R"(notify_post("VNutj2BhJMTGTwVk"))"};
      EXPECT_EQ(effects, left) << situation << ", command " << command;
      EXPECT_EQ(answer, outcome == Outcome::PassedOn) << situation << ", command " << command;
    }
  }
};

TEST_F(OtherAppsRule, EveryCommandInEverySituation) {
  for (const bool nowPlaying : {false, true}) {
    device.postDarwin(nowPlaying ? "YHePE3bJB3diJ1T" : "RjZoLhphi82WYz");
    device.drain();
    for (const Switch& enabled : kSwitchValues)
      for (const Player& player : kPlayerValues) {
        write({{"iea9AQXrEmhSZ4u", enabled.xml}, {"2I8UQMOAwU5nnNZt", player.xml}});
        sendEverything(
            nowPlaying, enabled.on, player.chosen,
            fmt::format("now playing {}, switch {}, player {}", nowPlaying,
                        enabled.xml ? enabled.xml : "absent", player.xml ? player.xml : "absent"));
      }
  }
  EXPECT_EQ(combinations, 2u * 6 * 7 * 8);
}

TEST_F(OtherAppsRule, WithoutAReadableFileEveryCommandIsPassedOn) {
  scenario::removeSettings(device);
  sendEverything(false, false, false, "no file");
  scenario::writeSettings(device, "garbage");
  sendEverything(false, false, false, "garbage");
  scenario::writeSettings(device, R"(<plist version="1.0"><array/></plist>)");
  sendEverything(false, false, false, "an array");
}

TEST_F(OtherAppsRule, EveryCommandOfTheWatch) {
  const std::map<long, std::string> ruled = {{0, R"(notify_post("FejJ91yPhXo8E"))"},
                                             {1, "MRMediaRemoteSendCommand(4, nil)"},
                                             {2, "MRMediaRemoteSendCommand(5, nil)"}};
  for (long command = 0; command <= 300; ++command) {
    const auto row = ruled.find(command);
    const std::string effect =
        row != ruled.end() ? row->second
                           : fmt::format("-[GCMMusicController didReceiveCommand:{}]", command);
    EXPECT_EQ(effectsOf([&] { watchCommand(device, command); }), Effects{effect});
    device.drain();
  }
}

}  // namespace
}  // namespace sim
