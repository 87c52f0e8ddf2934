// What a launch request does: every option, every state of the device, every way that leads to it.
#include <fmt/format.h>

#include "tests/rules/rule_fixture.hpp"

namespace sim {
namespace {

// What reaches the launcher, and with which app and options.
struct Entry {
  const char* name;
  void (*act)(Device&);
  bool replacement = false;  // opens the Music replacement app, without any option
  bool asksSwitch = true;
};

const Entry kEntries[] = {
    {"play tap",
     [](Device& d) {
       tapTransport(d, d.state.version >= 1145.15 && d.state.version <= 1280.0 ? 3 : 4);
     }},
    {"play command", [](Device& d) { remote(d, 0); }},
    {"toggle command", [](Device& d) { remote(d, 2); }},
    {"headphones", [](Device& d) { headphones(d, true); }},
    {"launch request", [](Device& d) { d.postDarwin(kLaunchRequest); }, false, false},
    {"toggle request", [](Device& d) { d.postDarwin(kToggleRequest); }},
    {"Auxo without track", [](Device& d) { auxoWidget(d, kMusic, false); }},
    {"title tap", tapTitle, true, false},
    {"Acapella", [](Device& d) { widget(d, "Acapella"); }, true, false},
    {"Acapella2", [](Device& d) { widget(d, "Acapella2"); }, true, false},
    {"MiniPlayer", [](Device& d) { widget(d, "MiniPlayer"); }, true, false},
    {"Auxo with track", [](Device& d) { auxoWidget(d, kMusic, false); }, true, false},
};

enum class Watch { None, Launch, KeepAlive };

struct Options {
  bool hiddenLocked = false;
  bool hiddenUnlocked = false;
  bool sound = false;
};

struct Situation {
  double booted = 0;   // the version while the watch was set up
  double version = 0;  // and when the request comes
  bool locked = false;
  bool running = false;
  bool screenOn = false;
  bool watching = false;  // the one slot for a watch is taken
  bool sameApp = false;   // the replacement app is the preferred player
  bool switchOn = true;
  Options options;
};

// What the rule says: the effects, what is watched then, and whether an unlock is waited for.
struct Outcome {
  std::vector<std::string> effects;
  Watch watch = Watch::None;
  bool pending = false;
};

bool supported(double version) { return version >= 847.2 && version <= 1280.0; }

class LauncherRule : public RuleTest {
 protected:
  LauncherRule() {
    installInert(kPlayer);
    installInert(kReplacement);
    device.state.addOns = {"Acapella", "Acapella2", "Auxo", "MiniPlayer"};
  }

  // SpringBoard's launch. A running player that comes to the front leaves the background first.
  static void launch(Outcome& outcome, const Situation& s, const std::string& app, bool suspended) {
    if (s.version >= 900.0 && !suspended && s.switchOn && app == kPlayer && s.running) {
      if (outcome.watch != Watch::None) outcome.effects.push_back(kInvalidateCall);
      outcome.watch = Watch::None;
      outcome.effects.push_back(sceneCall(app, true));
    }
    outcome.effects.push_back(launchCall(app, suspended));
  }
  static void launchHidden(Outcome& outcome, const Situation& s, const std::string& app) {
    launch(outcome, s, app, true);
    if (s.version >= 900.0) return;
    if (outcome.watch != Watch::None) outcome.effects.push_back(kInvalidateCall);
    outcome.effects.push_back(kTimerCall);
    outcome.watch = Watch::Launch;
  }
  static void askForPasscode(Outcome& outcome, const Situation& s, bool wake) {
    outcome.pending = true;
    outcome.effects.insert(outcome.effects.end(),
                           {"-[SBControlCenterController dismissAnimated:YES]",
                            "-[SBLockScreenViewController setPasscodeLockVisible:YES animated:YES "
                            "withUnlockSource:0 andOptions:nil]"});
    if (wake && !s.screenOn)
      outcome.effects.insert(
          outcome.effects.end(),
          {"-[SBBacklightController turnOnScreenFullyWithBacklightSource:1]",
           "-[SBBacklightController _resetLockScreenIdleTimerWithDuration:8 mode:1]"});
  }
  // The rule.
  static Outcome rule(const Situation& s, const Options& options, const std::string& app) {
    Outcome outcome;
    if (s.watching) outcome.watch = s.booted < 900.0 ? Watch::Launch : Watch::KeepAlive;
    if (!supported(s.version)) return outcome;
    if (options.sound) outcome.effects.push_back("AudioServicesPlaySystemSound(1352)");
    const bool hidden = s.locked ? options.hiddenLocked : options.hiddenUnlocked;
    if (hidden && !s.running)
      launchHidden(outcome, s, app);
    else if (s.locked)
      askForPasscode(outcome, s, !hidden);
    else
      launch(outcome, s, app, false);
    return outcome;
  }

  Settings settings(const Situation& s, const Options& options) const {
    return {{kSwitchKey, writtenTruth(s.switchOn)},
            {kPlayerKey, writtenText(kPlayer)},
            {kReplacementKey, writtenText(s.sameApp ? kPlayer : kReplacement)},
            {kHiddenLockedKey, writtenTruth(options.hiddenLocked)},
            {kHiddenUnlockedKey, writtenTruth(options.hiddenUnlocked)},
            {kSoundKey, writtenTruth(options.sound)},
            {kHeadphonesKey, kYes}};
  }
  void setRunningBoth(bool running) {
    for (const auto& app : {kPlayer, kReplacement}) device.state.app(app)->running = running;
  }
  // No watch, or one of the kind that the version makes.
  void setWatch(const Situation& s) {
    device.state.track = Track{kMusic, true};
    device.state.front.reset();
    quietly([&] { device.advance(seconds(1)); });  // a watch ends when something plays
    device.state.track.reset();
    if (!s.watching) return;
    device.state.locked = false;
    setRunningBoth(false);
    Situation switchedOn = s;
    switchedOn.switchOn = true;
    announce(settings(switchedOn, {false, true, false}));
    const auto made = effectsOf([&] {
      if (s.booted < 900.0)
        remote(device, 0);
      else
        processLaunched(device, kPlayer);
    });
    ASSERT_EQ(std::ranges::count(made, kTimerCall), 1);
  }
  static Microseconds seconds(int count) { return count * 1000000; }

  static std::string describe(const Situation& s, const Entry& entry) {
    return fmt::format(
        "{}: version {}, locked {}, running {}, screen {}, watching {}, same app {}, switch {}, "
        "hidden when locked {}, when unlocked {}, sound {}",
        entry.name, s.version, s.locked, s.running, s.screenOn, s.watching, s.sameApp, s.switchOn,
        s.options.hiddenLocked, s.options.hiddenUnlocked, s.options.sound);
  }

  void tryOne(const Situation& s, const Entry& entry) {
    const std::string app = entry.replacement && !s.sameApp ? kReplacement : kPlayer;
    const auto combination = [&] { return describe(s, entry); };
    setWatch(s);
    announce(settings(s, s.options));
    // Nothing is pending, and what would be is the preferred player.
    quietly([&] { dragLockScreen(device); });
    device.state.locked = s.locked;
    device.state.screenOn = s.screenOn;
    setRunningBoth(s.running);
    device.setVersion(s.version);
    if (entry.replacement) device.state.track = Track{kMusic, false};

    Outcome expected = rule(s, entry.replacement ? Options() : s.options, app);
    check(expected.effects, effectsOf([&] { entry.act(device); }), combination);

    // One second later a watch of a launch nudges its app once.
    if (expected.watch == Watch::Launch) {
      const bool old = expected.effects.empty() || expected.effects.back() != kTimerCall;
      const std::string nudge =
          "-[SBApplication(" + (old ? kPlayer : app) + ") resumeForContentAvailable]";
      check<std::vector<std::string>>({nudge}, effectsOf([&] { device.advance(seconds(1)); }),
                                      combination);
    } else {
      check<std::vector<std::string>>({}, effectsOf([&] { device.advance(seconds(1)); }),
                                      combination);
    }

    // The unlock launches what waits for it, in front, once.
    Outcome unlocked{{kUnlockCall}, expected.watch, false};
    if (expected.pending && (s.switchOn || entry.replacement)) launch(unlocked, s, app, false);
    check(unlocked.effects, effectsOf([&] { unlock(device); }), combination);
    check<std::vector<std::string>>({kUnlockCall}, effectsOf([&] { unlock(device); }), combination);
    device.setVersion(s.booted);
  }

  void tryEverythingAt(double booted, double version, bool switchOn = true) {
    for (unsigned bits = 0; bits < 1u << 8; ++bits) {
      const auto bit = [&](unsigned which) { return (bits >> which & 1) != 0; };
      const Situation s{booted, version,  bit(0),
                        bit(1), bit(2),   bit(3),
                        bit(4), switchOn, {bit(5), bit(6), bit(7)}};
      for (const Entry& entry : kEntries)
        if (switchOn || !entry.asksSwitch) tryOne(s, entry);
    }
  }
};

TEST_F(LauncherRule, HoldsForEveryOptionStateAndEntryOnEveryVersion) {
  for (const double version : kVersionsInside) {
    bootAt(version);
    tryEverythingAt(version, version);
  }
}

TEST_F(LauncherRule, HoldsForTheEntriesThatDoNotAskTheSwitchWhileItIsOff) {
  for (const double version : kVersionsInside) {
    bootAt(version);
    tryEverythingAt(version, version, false);
  }
}

TEST_F(LauncherRule, IsSilentOnceTheVersionIsOutsideOfWhatIsSupported) {
  for (const double booted : {847.24, 1145.15})
    for (const double version : kVersionsOutside) {
      bootAt(booted);
      tryEverythingAt(booted, version);
    }
}

}  // namespace
}  // namespace sim
