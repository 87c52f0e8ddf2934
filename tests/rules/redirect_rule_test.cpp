// Which request for audio is redirected, which is dropped and which reaches the platform: every
// combination of what the decision reads, for every request that asks for it.
#include "tests/rules/rule_fixture.hpp"

namespace sim {
namespace {

enum class Verdict { Passed, Redirected, Swallowed };

// The rule: y, n or either (-) for a held track, the switch, whether a player is chosen, and
// whether AppList lists it. The first row that fits decides.
struct Row {
  const char* situation;
  Verdict verdict;
};
constexpr Row kRule[] = {
    {"y---", Verdict::Passed},  // whatever is held, paused too, goes on by the platform's own means
    {"-n--", Verdict::Passed}, {"--n-", Verdict::Swallowed}, {"---y", Verdict::Redirected},
    {"---n", Verdict::Passed},  // somebody is chosen who cannot be launched
};

Verdict ruled(bool track, bool enabled, bool chosen, bool listed) {
  const bool facts[] = {track, enabled, chosen, listed};
  for (const Row& row : kRule) {
    bool fits = true;
    for (std::size_t i = 0; i < std::size(facts); ++i)
      fits = fits && (row.situation[i] == '-' || row.situation[i] == (facts[i] ? 'y' : 'n'));
    if (fits) return row.verdict;
  }
  throw std::logic_error("no row fits");
}

const double kVersions[] = {847.2,   847.24,  899.99, 900.0, 1145.14,
                            1145.15, 1240.09, 1240.1, 1280.0};

class RedirectRule : public RuleTest {
 protected:
  // The effects that a request must have; `own` is the platform's call for it.
  static Effects expected(Verdict verdict, double version, const std::string& own) {
    if (verdict == Verdict::Passed) return {own};
    if (verdict == Verdict::Swallowed) return {};
    // The player runs already: its scene is taken back before it comes to the front.
    if (version >= 900.0) return {scene(kListed, true), launch(kListed, false)};
    return {launch(kListed, false)};
  }
  void tapEverything(double version, Verdict verdict, const std::string& situation) {
    for (long control = 0; control <= 6; ++control, ++combinations) {
      const bool decides = control == playControl(version);
      const std::string own = fmt::format(
          "-[MPUSystemMediaControlsViewController transportControlsView:"
          "<MPUTransportControlsView> tapOnControlType:{}]",
          control);
      EXPECT_EQ(effectsOf([&] { tapTransport(device, control); }),
                expected(decides ? verdict : Verdict::Passed, version, own))
          << situation << ", control " << control;
    }
  }
  void sendEverything(double version, Verdict verdict, const std::string& situation) {
    for (unsigned command = 0; command <= 5; ++command, ++combinations) {
      const Verdict decided = command == 0 || command == 2 ? verdict : Verdict::Passed;
      std::optional<bool> answer;
      EXPECT_EQ(
          effectsOf([&] { answer = remote(device, command); }),
          expected(decided, version, fmt::format("MRMediaRemoteSendCommand({}, nil)", command)))
          << situation << ", command " << command;
      EXPECT_EQ(answer, decided == Verdict::Passed) << situation << ", command " << command;
    }
  }
};

TEST_F(RedirectRule, EveryRequestInEverySituationIsDecidedAsTheTableSays) {
  for (const double version : kVersions) {
    boot(version);
    for (const Switch& enabled : kSwitchValues)
      for (const Player& player : kPlayerValues) {
        announce({{"iea9AQXrEmhSZ4u", enabled.xml},
                  {"2I8UQMOAwU5nnNZt", player.xml},
                  {"feo63OPBmERAd2000UpdRdCAND", yes(true)}});
        for (const bool appList : {true, false})
          for (const char* track : {"none", "paused", "playing"}) {
            setAppList(appList);
            device.state.track.reset();
            if (track[0] != 'n') device.state.track = Track{kMusic, track[1] == 'l'};
            const Verdict verdict = ruled(device.state.track.has_value(), enabled.on, player.chosen,
                                          player.listed && appList);
            const std::string situation =
                fmt::format("version {}, switch {}, player {}, AppList {}, track {}", version,
                            enabled.xml ? enabled.xml : "absent",
                            player.xml ? player.xml : "absent", appList, track);
            tapEverything(version, verdict, situation);
            sendEverything(version, verdict, situation);
          }
        if (HasFailure()) return;
      }
  }
  EXPECT_EQ(combinations, 29484u);
}

}  // namespace
}  // namespace sim
