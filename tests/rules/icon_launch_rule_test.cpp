// What an icon and a launch by the system do to a player's scene, to a running watch, and to the
// start that is not to be answered: every combination of what they read.
#include "tests/rules/rule_fixture.hpp"

namespace sim {
namespace {

class IconLaunchRule : public RuleTest {
 protected:
  static constexpr double kVersions[] = {847.24, 899.99, 900.0, 1145.15, 1240.09, 1240.1, 1280.0};

  void bring(bool enabled, const std::string& player, bool autoPlay, bool notFromIcon) {
    const std::string xml = "<string>" + player + "</string>";
    announce({{"iea9AQXrEmhSZ4u", yes(enabled)},
              {"2I8UQMOAwU5nnNZt", xml.c_str()},
              {"4sySMd4CfPOr0F", yes(true)},
              {"KwI68FtaZGgSizb", yes(true)},
              {"LyyY0YZw4enaXR6S", yes(autoPlay)},
              {"AiPVzGZ3tdh2fBpXy", yes(notFromIcon)},
              {"feo63OPBmERAd2000UpdRdCAND", yes(true)}});
  }
  // A watch, on versions that have it: of the app that is preferred at the moment.
  void watch(bool watching) {
    device.state.track = Track{kMusic, true};
    if (!springBoard().timers.empty()) device.advance(1'000'000);
    device.state.track.reset();
    if (!watching) return;
    bring(true, kListed, false, false);
    processLaunched(device, kListed);
  }
  // What a launch of a running preferred player does first.
  static Effects takenBack(double version, bool acts, bool watching) {
    Effects effects;
    if (!acts || version < 900.0) return effects;
    if (watching) effects.push_back(kInvalidate);
    effects.push_back(scene(kListed, true));
    return effects;
  }
};

TEST_F(IconLaunchRule, EveryLaunchByTheSystem) {
  for (const double version : kVersions) {
    boot(version);
    for (unsigned bits = 0; bits < 32; ++bits)
      for (const std::string& player : {kListed, kReplacement, std::string()}) {
        ++combinations;
        const bool enabled = bits & 1, running = bits & 2, suspended = bits & 4,
                   watching = bits & 8;
        const bool asked = bits & 16;  // for the preferred player, or for another app
        device.state.app(kListed)->running = true;
        watch(watching);
        bring(enabled, player, false, false);
        const std::string app = asked ? kListed : "com.example.unlisted";
        device.state.app(kListed)->running = running;
        const bool acts = !suspended && enabled && player == app && running;
        Effects ruled = takenBack(version, acts, watching);
        ruled.push_back(launch(app, suspended));
        EXPECT_EQ(effectsOf([&] { open(device, app, suspended); }), ruled) << fmt::format(
            "version {}, switch {}, running {}, suspended {}, watching {}, {} for {}", version,
            enabled, running, suspended, watching, app, player);
        device.drain();
        if (device.process(app)) end(device, app);
        device.drain();
      }
    if (HasFailure()) return;
  }
  EXPECT_EQ(combinations, 7u * 32 * 3);
}

TEST_F(IconLaunchRule, EveryIcon) {
  for (const double version : kVersions) {
    boot(version);
    for (unsigned bits = 0; bits < 64; ++bits)
      for (const std::string& app : {kSpotify, kPodcasts, std::string("com.example.notes")}) {
        ++combinations;
        const bool enabled = bits & 1, running = bits & 2, autoPlay = bits & 4,
                   notFromIcon = bits & 8;
        const bool before = bits & 16;  // whether the answer was suppressed already
        const bool preferred = bits & 32;
        const bool player = app == kSpotify || app == kPodcasts;
        // Installed only where it runs: nothing is to start.
        std::erase_if(device.state.apps, [](const App& known) {
          return known.identifier == kSpotify || known.identifier == kPodcasts ||
                 known.identifier == "com.example.notes";
        });
        displayOff(device);
        bring(enabled, preferred ? app : kListed, true, true);
        if (before) tapIcon(device, "com.apple.podcasts" == app ? kSpotify : kPodcasts);
        if (running) device.state.apps.push_back({app, app, true, true});
        bring(enabled, preferred ? app : kListed, autoPlay, notFromIcon);
        Effects ruled;
        ruled.emplace_back("-[SBIconController _launchIcon:<SBApplicationIcon>]");
        const bool acts = version >= 900.0 && enabled && preferred && running;
        if (acts) ruled.insert(ruled.begin(), scene(app, true));
        if (acts) ruled.push_back(scene(app, true));  // by the launch that the icon leads to
        ruled.push_back(launch(app, false));
        EXPECT_EQ(effectsOf([&] { tapIcon(device, app); }), ruled) << version << ' ' << bits << app;
        const bool suppressed = player && !running ? autoPlay && notFromIcon : before;
        const Effects answer = effectsOf([&] {
          device.postDarwin("QjnUR4g9fc9hLq");
          device.drain();
        });
        EXPECT_EQ(answer, suppressed ? Effects{} : Effects{R"(notify_post("GYbIKwUwyBsCan1l"))"})
            << version << ' ' << bits << app;
      }
    if (HasFailure()) return;
  }
  EXPECT_EQ(combinations, 7u * 64 * 3);
}

}  // namespace
}  // namespace sim
