// When the app that stands in for Music is opened: by the title and by the widgets, in every
// situation that they read.
#include "tests/rules/rule_fixture.hpp"

namespace sim {
namespace {

struct Door {
  const char* name;
  std::string own;  // the platform's or the widget's call
  void (*open)(Device&);
};

const std::string kControls = "MPUSystemMediaControlsViewController";
const Door kDoors[] = {
    {"the title",
     "-[" + kControls + " mediaControlsTitlesViewWasTapped:<MPUMediaControlsTitlesView>]",
     tapTitle},
    {"Acapella", "-[" + kControls + " action_OpenApp]",
     [](Device& device) { widget(device, "Acapella"); }},
    {"Acapella2", "-[" + kControls + " action_openapp]",
     [](Device& device) { widget(device, "Acapella2"); }},
    {"MiniPlayer", "-[MPMiniPlayerActionsDelegate openNowPlayingApp]",
     [](Device& device) { widget(device, "MiniPlayer"); }},
};

class ReplacementRule : public RuleTest {
 protected:
  void SetUp() override {
    device.state.addOns = {"Acapella", "Acapella2", "Auxo", "MiniPlayer"};
    boot(1145.15);
  }
  // Nothing, Music or another app, paused or playing.
  void hold(const std::string& app, bool playing) {
    device.state.track.reset();
    if (!app.empty()) device.state.track = Track{app, playing};
  }
};

// The switch does not matter here, nor does the preferred player.
TEST_F(ReplacementRule, TheTitleAndThreeWidgetsInEverySituation) {
  for (const Switch& enabled : kSwitchValues)
    for (const Player& replacement : kPlayerValues) {
      announce({{"iea9AQXrEmhSZ4u", enabled.xml},
                {"RjNkaiHs98230Xx", replacement.xml},
                {"feo63OPBmERAd2000UpdRdCAND", yes(true)}});
      for (const bool appList : {true, false})
        for (const std::string& held : {std::string(), kMusic, std::string("com.example.notes")})
          for (const bool playing : {false, true})
            for (const Door& door : kDoors) {
              ++combinations;
              setAppList(appList);
              hold(held, playing);
              const bool opens = held == kMusic && replacement.listed && appList;
              EXPECT_EQ(effectsOf([&] { door.open(device); }),
                        Effects{opens ? launch(kListed, false) : door.own})
                  << door.name
                  << fmt::format(", switch {}, replacement {}, AppList {}, held {}",
                                 enabled.xml ? enabled.xml : "absent",
                                 replacement.xml ? replacement.xml : "absent", appList, held);
            }
    }
  EXPECT_EQ(combinations, 6u * 7 * 2 * 3 * 2 * 4);
}

// Auxo opens the app that it names, with a cell for a card. Music without a card is the replacement
// if a track is held, and else a request for the preferred player.
TEST_F(ReplacementRule, AuxoInEverySituation) {
  const auto own = [](const std::string& app, bool cell) {
    return fmt::format(
        "-[AuxoCollectionView activateApplicationWithDisplayIdentifier:\"{}\" fromCell:{}]", app,
        cell ? "<AuxoCell>" : "nil");
  };
  for (const Switch& enabled : kSwitchValues)
    for (const Player& player : kPlayerValues)
      for (const Player& replacement : kPlayerValues) {
        announce({{"iea9AQXrEmhSZ4u", enabled.xml},
                  {"2I8UQMOAwU5nnNZt", player.xml},
                  {"RjNkaiHs98230Xx", replacement.xml},
                  {"feo63OPBmERAd2000UpdRdCAND", yes(true)}});
        for (unsigned bits = 0; bits < 16; ++bits) {
          ++combinations;
          const bool appList = bits & 1, cell = bits & 2, music = bits & 4, track = bits & 8;
          setAppList(appList);
          hold(track ? "com.example.notes" : "", true);
          const std::string app = music ? kMusic : "com.example.notes";
          // An enabled preferred player that runs has its scene taken back first.
          Effects opened = {launch(kListed, false)};
          if (enabled.on && player.listed) opened.insert(opened.begin(), scene(kListed, true));
          Effects ruled = {own(app, cell)};
          if (music && !cell && appList) {
            if (track && replacement.listed) ruled = opened;
            if (!track && enabled.on && player.listed) ruled = opened;
            if (!track && enabled.on && !player.chosen) ruled = {};
          }
          EXPECT_EQ(effectsOf([&] { auxoWidget(device, app, cell); }), ruled) << fmt::format(
              "switch {}, player {}, replacement {}, AppList {}, cell {}, {}, track {}",
              enabled.xml ? enabled.xml : "absent", player.xml ? player.xml : "absent",
              replacement.xml ? replacement.xml : "absent", appList, cell, app, track);
        }
      }
  EXPECT_EQ(combinations, 6u * 7 * 7 * 16);
}

// Quitting the replacement's card quits Music with it, on each generation of the app switcher.
TEST_F(ReplacementRule, QuittingCardsInEverySituation) {
  const std::string kill = R"(system("killall -9 Music"))";
  for (const double version : {847.2, 899.99, 900.0, 1240.09, 1240.1, 1280.0}) {
    boot(version);
    for (const Player& replacement : kPlayerValues) {
      announce({{"RjNkaiHs98230Xx", replacement.xml}, {"feo63OPBmERAd2000UpdRdCAND", yes(true)}});
      for (const App& app : device.state.apps) {
        ++combinations;
        const Effects effects = effectsOf([&] { quitCard(device, app.identifier); });
        const bool kills =
            replacement.chosen &&
            std::string(replacement.xml).find(">" + app.identifier + "<") != std::string::npos;
        ASSERT_EQ(effects.size(), kills ? 2u : 1u) << version << ' ' << app.identifier;
        // Before the card goes on the oldest, behind it on the others.
        const std::size_t own = kills && version < 900.0 ? 1 : 0;
        EXPECT_TRUE(effects[own].starts_with("-[SBAppS")) << effects[own];
        if (kills) {
          EXPECT_EQ(effects[1 - own], kill);
        }
      }
    }
  }
  EXPECT_EQ(combinations, 6u * 7 * 4);
}

}  // namespace
}  // namespace sim
