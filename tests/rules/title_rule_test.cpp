// Which name the title views show: every combination of what is read.
#include "tests/rules/rule_fixture.hpp"

namespace sim {
namespace {

class TitleRule : public RuleTest {
 protected:
  static std::string shows(const std::string& name) {
    return "-[MPUMediaControlsTitlesView updateNowPlayingAppDisplayName:" + name + "]";
  }
};

// AppList is not asked: whatever the application controller knows has its name shown.
TEST_F(TitleRule, EveryNameInEverySituation) {
  device.state.app(kListed)->name = "Listed";
  device.state.app("com.example.unlisted")->name = "Unlisted";
  for (const double version : {847.2, 847.23, 847.24, 1145.15, 1240.09, 1240.1, 1280.0}) {
    boot(version);
    newTitleView(device, "view");
    for (const Switch& enabled : kSwitchValues)
      for (const Player& player : kPlayerValues)
        for (const std::string given : {"", "Music", "Somebody else"}) {
          ++combinations;
          const std::string chosen = player.chosen ? player.xml : "";
          std::string substitute = R"("")";
          if (chosen.find("listed<") != std::string::npos) substitute = R"("Listed")";
          if (chosen.find("unlisted<") != std::string::npos) substitute = R"("Unlisted")";
          if (chosen.find("unknown<") != std::string::npos) substitute = "nil";
          const bool substitutes = enabled.on && version >= 847.24;
          const auto situation = fmt::format("version {}, switch {}, player {}, given {}", version,
                                             enabled.xml ? enabled.xml : "absent", chosen, given);
          Effects refreshed = effectsOf([&] {
            announce({{"iea9AQXrEmhSZ4u", enabled.xml},
                      {"2I8UQMOAwU5nnNZt", player.xml},
                      {"feo63OPBmERAd2000UpdRdCAND", yes(true)}});
          });
          std::erase_if(refreshed, [](const auto& e) { return e.starts_with("-[NSMutable"); });
          EXPECT_EQ(refreshed, substitutes ? Effects{shows(substitute)} : Effects{}) << situation;
          EXPECT_EQ(effectsOf([&] { showInTitleView(device, "view", given); }),
                    Effects{shows(substitutes ? substitute : quoted(given))})
              << situation;
        }
  }
  EXPECT_EQ(combinations, 7u * 6 * 7 * 3);
}

}  // namespace
}  // namespace sim
