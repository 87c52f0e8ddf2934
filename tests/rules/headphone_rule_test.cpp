// What plugging in does: every combination of what the trigger reads.
#include "tests/rules/rule_fixture.hpp"

namespace sim {
namespace {

class HeadphoneRule : public RuleTest {};

TEST_F(HeadphoneRule, EverySituation) {
  for (const double version : {847.24, 900.0, 1145.15, 1240.09, 1240.1, 1280.0}) {
    boot(version);
    for (const bool trigger : {false, true})
      for (const Switch& enabled : kSwitchValues)
        for (const Player& player : kPlayerValues) {
          announce({{"I9gqmWG8wXu6", yes(trigger)},
                    {"iea9AQXrEmhSZ4u", enabled.xml},
                    {"2I8UQMOAwU5nnNZt", player.xml},
                    {"feo63OPBmERAd2000UpdRdCAND", yes(true)}});
          for (unsigned bits = 0; bits < 8; ++bits)
            for (const char* track : {"none", "paused", "playing"}) {
              ++combinations;
              const bool in = bits & 1, call = bits & 2, appList = bits & 4;
              setAppList(appList);
              device.state.inCall = call;
              device.state.track.reset();
              if (track[0] != 'n') device.state.track = Track{"com.example.notes", track[1] == 'l'};
              const bool held = device.state.track.has_value();
              Effects ruled;
              if (in && !call && trigger && enabled.on && player.listed && appList) {
                if (held)
                  ruled = {"-[SBMediaController play]"};
                else if (version >= 900.0)
                  ruled = {scene(kListed, true), launch(kListed, false)};
                else
                  ruled = {launch(kListed, false)};
              }
              EXPECT_EQ(effectsOf([&] { headphones(device, in); }), ruled) << fmt::format(
                  "version {}, trigger {}, switch {}, player {}, in {}, call {}, AppList {}, "
                  "track {}",
                  version, trigger, enabled.xml ? enabled.xml : "absent",
                  player.xml ? player.xml : "absent", in, call, appList, track);
            }
        }
    if (HasFailure()) return;
  }
  EXPECT_EQ(combinations, 6u * 2 * 6 * 7 * 8 * 3);
}

}  // namespace
}  // namespace sim
