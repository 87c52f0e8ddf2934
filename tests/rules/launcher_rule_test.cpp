// How a player is launched: every lock state, option, screen and version, from everything that
// launches one; and what the unlock makes of a launch that had to wait.
#include "tests/rules/rule_fixture.hpp"

namespace sim {
namespace {

struct Situation {
  double version;
  bool locked, hiddenWhenLocked, hiddenWhenUnlocked, sound, running, screenOn;

  std::string text() const {
    return fmt::format(
        "version {}, locked {}, hidden when locked {}, when unlocked {}, sound {}, running {}, "
        "screen on {}",
        version, locked, hiddenWhenLocked, hiddenWhenUnlocked, sound, running, screenOn);
  }
};

// What launches something: the preferred player with the user's options, or the replacement with
// none of them.
struct Entry {
  const char* name;
  bool preferred;
  void (*happen)(Device& device, double version);
};

const Entry kEntries[] = {
    {"a tap on Play", true,
     [](Device& device, double version) {
       tapTransport(device, version >= 1145.15 && version <= 1280.0 ? 3 : 4);
     }},
    {"a play command", true, [](Device& device, double) { remote(device, 0); }},
    {"a toggle command", true, [](Device& device, double) { remote(device, 2); }},
    {"headphones", true, [](Device& device, double) { headphones(device, true); }},
    {"another app's request", true,
     [](Device& device, double) {
       // Delivered at once, so that what it queues waits.
       Process& board = *device.springBoard();
       device.callback(board, [&] {
         for (const auto& observer : board.observers)
           if (observer.name == "VNutj2BhJMTGTwVk")
             board.library().call(observer.callback, Kind::Void,
                                  std::vector<Value>(5, Value::of(Kind::Pointer, 0)));
       });
     }},
    {"Auxo without a track", true,
     [](Device& device, double) { auxoWidget(device, kMusic, false); }},
    {"a tap on the title", false, [](Device& device, double) { tapTitle(device); }},
    {"Acapella", false, [](Device& device, double) { widget(device, "Acapella"); }},
    {"Acapella2", false, [](Device& device, double) { widget(device, "Acapella2"); }},
    {"MiniPlayer", false, [](Device& device, double) { widget(device, "MiniPlayer"); }},
    {"Auxo with a track", false, [](Device& device, double) { auxoWidget(device, kMusic, false); }},
};

class LauncherRule : public RuleTest {
 protected:
  static bool supported(double version) { return version >= 847.2 && version <= 1280.0; }

  struct Outcome {
    Effects effects;
    bool waits = false;  // for the unlock
  };

  // The rule.
  static Outcome ruled(const Situation& now, bool preferred) {
    const std::string& app = preferred ? kListed : kReplacement;
    const bool hiddenWhenLocked = preferred && now.hiddenWhenLocked;
    const bool hiddenWhenUnlocked = preferred && now.hiddenWhenUnlocked;
    Outcome outcome;
    if (!supported(now.version)) return outcome;
    if (preferred && now.sound) outcome.effects.emplace_back("AudioServicesPlaySystemSound(1352)");
    const bool asksForUnlock = now.locked && (!hiddenWhenLocked || now.running);
    const bool hidden = !now.running && (now.locked ? hiddenWhenLocked : hiddenWhenUnlocked);
    if (asksForUnlock) {
      outcome.waits = true;
      outcome.effects.emplace_back("-[SBControlCenterController dismissAnimated:YES]");
      outcome.effects.emplace_back(
          "-[SBLockScreenViewController setPasscodeLockVisible:YES animated:YES "
          "withUnlockSource:0 andOptions:nil]");
      if (!hiddenWhenLocked && !now.screenOn) {
        outcome.effects.emplace_back(
            "-[SBBacklightController turnOnScreenFullyWithBacklightSource:1]");
        outcome.effects.emplace_back(
            "-[SBBacklightController _resetLockScreenIdleTimerWithDuration:8 mode:1]");
      }
      return outcome;
    }
    // A preferred player that runs has its scene taken back before it comes to the front.
    if (preferred && !hidden && now.running && now.version >= 900.0)
      outcome.effects.push_back(scene(app, true));
    outcome.effects.push_back(launch(app, hidden));
    if (hidden && now.version < 900.0) outcome.effects.push_back(kWatch);
    return outcome;
  }
  static Effects ruledUnlock(const Situation& now, bool preferred, bool waits) {
    Effects effects = {"-[SBLockScreenViewController finishUIUnlockFromSource:0]"};
    if (!waits) return effects;
    if (preferred && now.running && now.version >= 900.0) effects.push_back(scene(kListed, true));
    effects.push_back(launch(preferred ? kListed : kReplacement, false));
    return effects;
  }

  void bring(const Situation& now, bool preferred) {
    device.setVersion(now.version);
    device.state.locked = now.locked;
    device.state.screenOn = now.screenOn;
    device.state.app(kListed)->running = now.running;
    device.state.app(kReplacement)->running = now.running;
    device.state.track.reset();
    if (!preferred) device.state.track = Track{kMusic, false};
  }
  // Whatever was started ends, and so does its watch.
  void settle() {
    device.drain();
    for (const std::string& app : {kListed, kReplacement})
      if (device.process(app)) end(device, app);
    device.state.track = Track{kMusic, true};
    if (!springBoard().timers.empty()) device.advance(1'000'000);
    ASSERT_TRUE(springBoard().timers.empty());
  }

  void tryEverything(double version) {
    for (unsigned bits = 0; bits < 64; ++bits) {
      const auto bit = [bits](unsigned which) { return (bits >> which & 1) != 0; };
      const Situation now{version, bit(0), bit(1), bit(2), bit(3), bit(4), bit(5)};
      announce({{"iea9AQXrEmhSZ4u", yes(true)},
                {"2I8UQMOAwU5nnNZt", "<string>com.example.listed</string>"},
                {"RjNkaiHs98230Xx", "<string>com.example.replacement</string>"},
                {"4sySMd4CfPOr0F", yes(now.hiddenWhenLocked)},
                {"KwI68FtaZGgSizb", yes(now.hiddenWhenUnlocked)},
                {"ljyr9pMzliGkTNvfm", yes(now.sound)},
                {"I9gqmWG8wXu6", yes(true)},
                {"feo63OPBmERAd2000UpdRdCAND", yes(true)}});
      for (const Entry& entry : kEntries) {
        ++combinations;
        bring(now, entry.preferred);
        const Outcome outcome = ruled(now, entry.preferred);
        EXPECT_EQ(effectsOf([&] { entry.happen(device, version); }), outcome.effects)
            << entry.name << ", " << now.text();
        settle();
        bring(now, entry.preferred);
        EXPECT_EQ(effectsOf([&] { unlock(device); }),
                  ruledUnlock(now, entry.preferred, outcome.waits))
            << "the unlock behind " << entry.name << ", " << now.text();
        settle();
        if (HasFailure()) return;
      }
    }
  }
};

TEST_F(LauncherRule, EveryEntryInEverySituationLaunchesAsTheRuleSays) {
  device.state.addOns = {"Acapella", "Acapella2", "Auxo", "MiniPlayer"};
  for (const double version :
       {847.2, 847.24, 899.99, 900.0, 1145.14, 1145.15, 1240.09, 1240.1, 1280.0}) {
    boot(version);
    tryEverything(version);
    if (HasFailure()) return;
  }
  // A version that the launcher refuses, told only when SpringBoard runs.
  for (const auto& [booted, version] : {std::pair(847.2, 847.19), std::pair(1280.0, 1280.01)}) {
    boot(booted);
    tryEverything(version);
    if (HasFailure()) return;
  }
  EXPECT_EQ(combinations, 11u * 64 * std::size(kEntries));
}

}  // namespace
}  // namespace sim
