// Which events forget a launch that waits for the unlock, and which forget that the next start
// signal is to be left unanswered.
#include <fmt/format.h>

#include "tests/rules/rule_fixture.hpp"

namespace sim {
namespace {

// What SpringBoard remembers between a request and the unlock.
struct Memory {
  bool pending = false;      // a launch waits for the unlock
  bool usesPlayer = true;    // of the preferred player; else of the Music replacement app
  bool skipsSignal = false;  // the next start of a player is not told to play
};

enum class Held { Nothing, Music, Spotify };

struct Situation {
  double version = 0;
  bool locked = false;
  bool switchOn = false;
  bool chosen = false;  // a preferred player
  Held held = Held::Nothing;
};

// ---- The rules

void reset(Memory& m) { m = Memory(); }
void launch(Memory& m, const Situation& s) { m.pending |= s.locked; }
void redirect(Memory& m, const Situation& s) {
  reset(m);
  if (s.held == Held::Nothing && s.switchOn && s.chosen) launch(m, s);
}
void openReplacement(Memory& m, const Situation& s) {
  reset(m);
  if (s.held != Held::Music) return;
  m.usesPlayer = false;
  launch(m, s);
}
void launchRequest(Memory& m, const Situation& s) {
  reset(m);
  if (s.chosen) launch(m, s);
}
void auxoWithMusic(Memory& m, const Situation& s) {
  reset(m);
  if (s.held == Held::Nothing) return redirect(m, s);
  m.usesPlayer = false;
  launch(m, s);
}
void plugIn(Memory& m, const Situation& s) {
  m.pending = false;
  if (s.chosen && s.switchOn && s.held == Held::Nothing) launch(m, s);
}
void unlocked(Memory& m) {
  if (m.pending) m.usesPlayer = true;
  m.pending = false;
}

struct Event {
  std::string name;
  std::function<void(Device&)> act;
  std::function<void(Memory&, const Situation&)> rule;
  std::string passed;  // where the hook does nothing else: the one effect
};

void ignores(Memory&, const Situation&) {}
void resets(Memory& m, const Situation&) { reset(m); }
bool playTap(long type, const Situation& s) { return type == (s.version >= 1145.15 ? 3 : 4); }

std::string yesNo(bool value) { return value ? "YES" : "NO"; }

void addLockScreen(std::vector<Event>& events) {
  for (unsigned bits = 0; bits < 8; ++bits) {
    const bool visible = bits & 1;
    const bool animated = bits & 2;
    const bool completion = bits & 4;
    const std::string passed =
        "-[SBLockScreenViewController setPasscodeLockVisible:" + yesNo(visible) +
        " animated:" + yesNo(animated) + " completion:" + (completion ? "<block>]" : "nil]");
    const bool turnsAway = !visible && animated && !completion;
    events.push_back({passed, [=](Device& d) { passcode(d, visible, animated, completion); },
                      turnsAway ? resets : ignores, passed});
  }
  events.push_back(
      {"display off", displayOff, resets, "-[SBLockScreenViewController _handleDisplayTurnedOff]"});
  events.push_back({"drag", [](Device& d) { EXPECT_EQ(dragLockScreen(d), std::optional(true)); },
                    resets, "-[SBLockScreenScrollView touchesShouldCancelInContentView:<UIView>]"});
  events.push_back({"unlock", unlock, [](Memory& m, const Situation&) { unlocked(m); }, ""});
}

void addControls(std::vector<Event>& events) {
  for (long type = 0; type <= 6; ++type)
    events.push_back(
        {fmt::format("control type {}", type), [=](Device& d) { tapTransport(d, type); },
         [=](Memory& m, const Situation& s) { playTap(type, s) ? redirect(m, s) : reset(m); }, ""});
  for (unsigned command = 0; command <= 5; ++command)
    events.push_back({fmt::format("command {}", command), [=](Device& d) { remote(d, command); },
                      command == 0 || command == 2 ? redirect : ignores, ""});
  events.push_back({"title tap", tapTitle, openReplacement, ""});
  for (const char* name : {"Acapella", "Acapella2", "MiniPlayer"})
    events.push_back({name, [=](Device& d) { widget(d, name); }, openReplacement, ""});
  events.push_back({"Auxo", [](Device& d) { auxoWidget(d, kMusic, false); }, auxoWithMusic, ""});
  events.push_back({"Auxo, a card", [](Device& d) { auxoWidget(d, kMusic, true); }, resets, ""});
  events.push_back(
      {"Auxo, another app", [](Device& d) { auxoWidget(d, kSpotify, false); }, resets, ""});
}

void addSignals(std::vector<Event>& events) {
  const auto post = [](const std::string& name) {
    return [name](Device& d) { d.postDarwin(name); };
  };
  events.push_back({"launch request", post(kLaunchRequest), launchRequest, ""});
  events.push_back({"toggle request", post(kToggleRequest), redirect, ""});
  events.push_back({"settings changed", post(kSettingsChanged), ignores, ""});
  events.push_back({"player started", post(kPlayerStarted),
                    [](Memory& m, const Situation&) { m.skipsSignal = false; }, ""});
  events.push_back({"something plays", post(kSomethingPlays), ignores, ""});
  events.push_back({"nothing plays", post(kNothingPlays), ignores, ""});
  events.push_back({"start playing", post(kStartPlaying), ignores, ""});
  events.push_back({"plug in", [](Device& d) { headphones(d, true); }, plugIn, ""});
  events.push_back({"unplug", [](Device& d) { headphones(d, false); }, ignores, ""});
}

void addApps(std::vector<Event>& events) {
  for (const auto& app : {kMusic, kPlayer, kReplacement})
    events.push_back({"quit " + app, [=](Device& d) { quitCard(d, app); }, resets, ""});
  for (const auto& app : {kMusic, kPlayer, kReplacement, kSpotify}) {
    for (const bool suspended : {false, true})
      events.push_back({fmt::format("open {} {}", app, suspended),
                        [=](Device& d) { open(d, app, suspended); }, ignores, ""});
    events.push_back({"process " + app, [=](Device& d) { processLaunched(d, app); }, ignores, ""});
  }
  for (const auto& app : {kMusic, kPlayer, kReplacement})
    events.push_back({"icon " + app, [=](Device& d) { tapIcon(d, app); }, ignores, ""});
  for (const bool anything : {false, true})
    events.push_back({fmt::format("now playing {}", anything),
                      [=](Device& d) { nowPlaying(d, anything); }, ignores, ""});
  events.push_back({"title view",
                    [](Device& d) {
                      newTitleView(d, "a");
                      showInTitleView(d, "a", "Music");
                      freeTitleView(d, "a");
                    },
                    ignores, ""});
  events.push_back({"a minute", [](Device& d) { d.advance(60'000'000); }, ignores, ""});
}

std::vector<Event> allEvents() {
  std::vector<Event> events;
  events.push_back({"nothing", [](Device&) {}, ignores, ""});
  addLockScreen(events);
  addControls(events);
  addSignals(events);
  addApps(events);
  return events;
}

class ResetRule : public RuleTest {
 protected:
  ResetRule() {
    for (const auto& app : {kPlayer, kReplacement, kSpotify, kPodcasts}) installInert(app);
    device.state.apps.insert(device.state.apps.begin(), {kOther, "Other"});
    device.state.addOns = {"Acapella", "Acapella2", "Auxo", "MiniPlayer"};
  }

  static Settings settings(bool switchOn, bool chosen) {
    return {{kSwitchKey, writtenTruth(switchOn)},
            {kPlayerKey, chosen ? writtenText(kPlayer) : kAbsent},
            {kReplacementKey, writtenText(kReplacement)},
            {kAutoPlayKey, kYes},
            {kNoAutoPlayFromIconKey, kYes},
            {kHeadphonesKey, kYes}};
  }
  void hold(Held held) {
    device.state.track.reset();
    if (held != Held::Nothing)
      device.state.track = Track{held == Held::Music ? kMusic : kSpotify, false};
  }
  void nothingRuns() {
    for (App& app : device.state.apps) app.running = false;
  }

  // Makes SpringBoard remember exactly this.
  void remember(const Memory& memory) {
    announce(settings(true, true));
    nothingRuns();
    device.state.locked = true;
    quietly([&] { dragLockScreen(device); });
    if (!memory.usesPlayer) {
      hold(Held::Music);
      quietly([&] { tapTitle(device); });
      // A plug-in forgets the launch, but not of which app it was; what is held goes on.
      if (!memory.pending) quietly([&] { headphones(device, true); });
    } else if (memory.pending) {
      quietly([&] { device.postDarwin(kLaunchRequest); });
    }
    if (memory.skipsSignal) quietly([&] { tapIcon(device, kSpotify); });
  }

  // What SpringBoard remembers, as it shows: by the answer to a player's start, by the next unlock,
  // and by the unlock after a plug-in, which says nothing about the app to launch.
  std::vector<std::string> whatIsRemembered() {
    announce(settings(true, true));
    nothingRuns();
    hold(Held::Nothing);
    std::vector<std::string> shown;
    const auto add = [&](const std::vector<std::string>& effects) {
      shown.insert(shown.end(), effects.begin(), effects.end());
    };
    add(effectsOf([&] { device.postDarwin(kPlayerStarted); }));
    add(effectsOf([&] { unlock(device); }));
    device.state.locked = true;
    quietly([&] { headphones(device, true); });
    add(effectsOf([&] { unlock(device); }));
    return shown;
  }
  static std::vector<std::string> shows(Memory memory) {
    std::vector<std::string> shown;
    if (!memory.skipsSignal) shown.push_back(postCall(kStartPlaying));
    shown.push_back(kUnlockCall);
    if (memory.pending)
      shown.push_back(launchCall(memory.usesPlayer ? kPlayer : kReplacement, false));
    unlocked(memory);
    shown.push_back(kUnlockCall);
    shown.push_back(launchCall(memory.usesPlayer ? kPlayer : kReplacement, false));
    return shown;
  }

  static std::string describe(const Memory& m) {
    return fmt::format("pending {}, of the player {}, skips the signal {}", m.pending, m.usesPlayer,
                       m.skipsSignal);
  }
  static std::vector<Memory> memories() {
    std::vector<Memory> all;
    for (unsigned bits = 0; bits < 8; ++bits)
      all.push_back({(bits & 1) != 0, (bits & 2) != 0, (bits & 4) != 0});
    return all;
  }

  void tryEvent(const Memory& before, const Situation& s, const Event& event) {
    const auto combination = [&] {
      return fmt::format("{}: {}; version {}, locked {}, switch {}, player chosen {}, held {}",
                         event.name, describe(before), s.version, s.locked, s.switchOn, s.chosen,
                         static_cast<int>(s.held));
    };
    remember(before);
    announce(settings(s.switchOn, s.chosen));
    device.state.locked = s.locked;
    hold(s.held);
    const auto effects = effectsOf([&] { event.act(device); });
    if (!event.passed.empty())
      check<std::vector<std::string>>({event.passed}, effects, combination);
    Memory after = before;
    event.rule(after, s);
    check(shows(after), whatIsRemembered(), combination);
  }
};

TEST_F(ResetRule, HoldsForEveryEventAndEverythingThatCanBeRemembered) {
  const auto events = allEvents();
  // One for each way of the app switcher and each number of the play control.
  for (const double version : {847.2, 900.0, 1145.15, 1240.1}) {
    bootAt(version);
    for (unsigned bits = 0; bits < 1u << 3; ++bits)
      for (const Held held : {Held::Nothing, Held::Music, Held::Spotify})
        for (const Memory& before : memories())
          for (const Event& event : events)
            tryEvent(before, {version, (bits & 1) != 0, (bits & 2) != 0, (bits & 4) != 0, held},
                     event);
  }
}

TEST_F(ResetRule, AtTheStartNothingIsRemembered) {
  for (const double version : kVersionsInside) {
    bootAt(version, settings(true, true));
    check(shows({false, false, false}), whatIsRemembered(),
          [&] { return fmt::format("version {}", version); });
  }
}

// The icons of the two players that start by themselves are the only ones that make SpringBoard
// leave a start signal unanswered.
TEST_F(ResetRule, HoldsForEveryIconAndOption) {
  for (const double version : kVersionsInside) {
    bootAt(version);
    for (const auto& icon : {kSpotify, kPodcasts, kMusic, kPlayer, kReplacement,
                             std::string("com.Spotify.client"), std::string("com.example.gone")})
      for (const SwitchValue& autoPlay : version == 1145.15 ? kAllSwitchValues : kPlainSwitchValues)
        for (const SwitchValue& notFromIcon : kPlainSwitchValues)
          for (const bool running : {false, true})
            for (const Memory& before : memories()) {
              remember(before);
              Settings changed = settings(true, true);
              changed[kAutoPlayKey] = autoPlay.value;
              changed[kNoAutoPlayFromIconKey] = notFromIcon.value;
              announce(changed);
              for (App& app : device.state.apps) app.running = running;
              quietly([&] { tapIcon(device, icon); });
              Memory after = before;
              if ((icon == kSpotify || icon == kPodcasts) && !running)
                after.skipsSignal = autoPlay.on && notFromIcon.on;
              check(shows(after), whatIsRemembered(), [&] {
                return fmt::format(
                    "icon {}, version {}, auto-play '{}', not from icon '{}', running {}; {}", icon,
                    version, autoPlay.value, notFromIcon.value, running, describe(before));
              });
            }
  }
}

// A plug-in forgets a pending launch only where the trigger is on and no call is in progress.
TEST_F(ResetRule, HoldsForEveryPlugIn) {
  for (const double version : kVersionsInside) {
    bootAt(version);
    for (const SwitchValue& trigger : kPlainSwitchValues)
      for (unsigned bits = 0; bits < 1u << 5; ++bits)
        for (const Held held : {Held::Nothing, Held::Music, Held::Spotify})
          for (const Memory& before : memories()) {
            const auto bit = [&](unsigned which) { return (bits >> which & 1) != 0; };
            const Situation s{version, bit(0), bit(1), bit(2), held};
            const bool connected = bit(3);
            remember(before);
            Settings changed = settings(s.switchOn, s.chosen);
            changed[kHeadphonesKey] = trigger.value;
            announce(changed);
            device.state.locked = s.locked;
            device.state.inCall = bit(4);
            hold(held);
            quietly([&] { headphones(device, connected); });
            device.state.inCall = false;
            Memory after = before;
            if (connected && !bit(4) && trigger.on) plugIn(after, s);
            check(shows(after), whatIsRemembered(), [&] {
              return fmt::format("version {}, trigger '{}', bits {:05b}, held {}; {}", version,
                                 trigger.value, bits, static_cast<int>(held), describe(before));
            });
          }
  }
}

}  // namespace
}  // namespace sim
