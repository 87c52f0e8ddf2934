#include "sim/explore/draw.hpp"

#include <fmt/format.h>

#include "sim/core/class_definition.hpp"
#include "sim/explore/draw_page.hpp"
#include "sim/explore/draw_world.hpp"
#include "sim/explore/names.hpp"

namespace sim::explore {

namespace {

using Strings = std::vector<std::string>;

std::string yesNo(Random& random) { return random.chance(50) ? "yes" : "no"; }

std::string in(const std::string& text) { return "\"" + text + "\""; }

// Most often the player that is also set as the preferred one.
const std::string& anApp(Random& random) {
  return random.chance(40) ? random.of(kPlayers) : random.of(kApps);
}

std::string setting(Random& random) {
  static const Strings switches = {"yes",
                                   "yes",
                                   "yes",
                                   "no",
                                   "1",
                                   "0",
                                   "-1",
                                   "\"YES\"",
                                   "\"0\"",
                                   "\" yes\"",
                                   "\"\"",
                                   "absent",
                                   "9223372036854775807",
                                   "\"true\"",
                                   "\"n\""};
  const std::size_t kind = random.below(20);
  if (kind < 11) return "prefs " + random.of(kSwitches) + " " + random.of(switches);
  if (kind < 17) {
    static const Strings odd = {"\"\"", "5", "yes", "absent", "\"com.example.gone\"", "\"\\n\""};
    const std::string value = random.chance(70) ? in(anApp(random)) : random.of(odd);
    return "prefs " + random.of(kTexts) + " " + value;
  }
  static const Strings marks = {"yes", "no", "absent", "\"\"", "0"};
  return "prefs " + random.of(kMarkers) + " " + random.of(marks);
}

std::string settingsFile(Random& random) {
  static const Strings plain = {"prefs-remove", "prefs-readonly yes", "prefs-readonly no",
                                "prefs-readonly no"};
  return random.chance(50) ? random.of(plain) : "prefs-file " + drawSettingsFile(random);
}

std::string track(Random& random) {
  if (random.chance(50)) return "track none";
  return "track " + anApp(random) + (random.chance(50) ? " playing" : " paused");
}

// Foundation is always there.
std::string missingClass(Random& random) {
  static const Strings all = [] {
    Strings names;
    for (const auto& definition : classDefinitions())
      if (!definition.name().starts_with('_') && !definition.name().starts_with("NS"))
        names.push_back(definition.name());
    return names;
  }();
  return "no-class " + random.of(all);
}

std::string network(Random& random) {
  static const Strings flags = {"0x2", "0x0", "0x6", "0xe", "0x1e", "0x26", "0x36", "0x40036"};
  return "network " + (random.chance(15) ? "unavailable" : random.of(flags));
}

std::string player(Random& random) {
  static const Strings after = {
      "never",           "after 1",       "after 2",        "after 3",      "after 99",
      "replaced yes",    "replaced no",   "vanishes 2",     "vanishes 3",   "vanishes 0",
      "reports yes yes", "reports no no", "reports no yes", "reports truth"};
  return "player " + random.of(kPlayers) + " " + random.of(after);
}

std::string widget(Random& random) {
  static const Strings all = {"Acapella",
                              "Acapella2",
                              "MiniPlayer",
                              "Auxo com.apple.Music no-cell",
                              "Auxo com.apple.Music cell",
                              "Auxo com.pandora no-cell"};
  return "widget " + random.of(all);
}

std::string titleView(Random& random) {
  const std::string view = fmt::format("v{}", random.below(3));
  const std::size_t kind = random.below(5);
  if (kind < 2) return "title-view new " + view;
  if (kind < 3) return "title-view free " + view;
  return "title-view show " + view + " \"Title\"";
}

std::string advance(Random& random) {
  static const Strings spans = {"0.36", "0.5", "1", "1", "1", "2", "5", "26", "41", "120"};
  return "advance " + random.of(spans);
}

std::string press(Random& random) { return fmt::format("press {}", random.below(3)); }

std::string remote(Random& random) {
  static const Strings numbers = {"0", "0", "2", "2", "1", "3", "4", "5", "4294967295"};
  const std::string command = "remote " + random.of(numbers);
  if (random.chance(60)) return command;
  const std::string& process = random.chance(20) ? random.of(kDaemons) : anApp(random);
  return command + " in " + process + (random.chance(30) ? " off-main" : "");
}

// What may happen in the middle of a call that can run the run loop.
std::string during(Random& random) {
  static const Strings calls = {"launchApplicationWithIdentifier:suspended:",
                                "launchApplicationWithIdentifier:suspended:",
                                "launchApplicationWithIdentifier:suspended:",
                                "_applyMutableSettings:withTransitionContext:completion:",
                                "setPasscodeLockVisible:animated:withUnlockSource:andOptions:",
                                "dismissAnimated:",
                                "finishUIUnlockFromSource:",
                                "processDidLaunch:",
                                "resumeForContentAvailable",
                                "_launchIcon:",
                                "remove:",
                                "removeDisplayItem:",
                                "_quitAppAtIndex:",
                                "setPaused:",
                                "play",
                                "show"};
  static const Strings happenings = {
      "announce",      "announce",    "unlock",
      "advance 1",     "boot",        "now-playing nil",
      "headphones in", "display-off", "tap-transport 3",
      "track none",    "locked yes",  "post \\\"VNutj2BhJMTGTwVk\\\""};
  const std::size_t kind = random.below(10);
  std::string command = random.of(happenings);
  if (kind < 2) command = "app " + anApp(random) + " \\\"Anew\\\"";
  if (kind == 2) command = "end " + anApp(random);
  return "during " + random.of(calls) + " " + in(command);
}

std::string watch(Random& random) {
  static const Strings numbers = {"0", "0", "1", "2", "3", "4294967295"};
  return "watch " + random.of(numbers);
}

std::string tapTransport(Random& random) {
  static const Strings types = {"3", "3", "4", "4", "5", "0", "2147483647"};
  return "tap-transport " + random.of(types);
}

std::string pressPlay(Random& random) {
  static const Strings all = {"tap-transport 3", "tap-transport 4", "remote 0",
                              "remote 2",        "headphones in",   "post \"VNutj2BhJMTGTwVk\"",
                              "tap-title"};
  return random.of(all);
}

std::string neighbour(Random& random) {
  static const Strings all = {"none", "before", "after"};
  return "neighbour " + random.of(all);
}

std::string category(Random& random) {
  static const Strings all = {"category UIAlertView", "category NSTimer"};
  return random.of(all);
}

std::string usedCategory(Random& random) {
  const std::string app = random.chance(40) ? "com.apple.springboard" : anApp(random);
  return (random.chance(50) ? "app-alert " : "app-timer ") + app;
}

// ---- Short stories, for what single commands seldom bring about

// Play is asked for while the device is locked, something happens, the user unlocks.
Strings deferredLaunch(Random& random) {
  Strings lines = {"locked yes", random.chance(70) ? "track none" : "track com.apple.Music paused",
                   pressPlay(random)};
  static const Strings between = {
      "announce",          "advance 1",           "no-class ALApplicationList",
      "passcode no no no", "passcode yes yes no", "boot"};
  const std::size_t kind = random.below(4);
  if (kind == 0) lines.push_back("unlist " + anApp(random));
  if (kind == 1) lines.push_back(random.of(between));
  if (kind == 2) lines.insert(lines.end(), {setting(random), "announce"});
  lines.emplace_back("unlock");
  return lines;
}

// Something happens in the middle of what a request to play leads to.
Strings interrupted(Random& random) { return {"track none", during(random), pressPlay(random)}; }

// A greeting that is answered, down to the account that follows.
Strings greeting(Random& random) {
  Strings lines = {"prefs feo63OPBmERAd2000UpdRdCAND absent", "announce", "unlock"};
  for (std::size_t i = random.below(4); i > 0; --i)
    lines.insert(lines.begin(), fmt::format("account a{}", i));
  lines.push_back(press(random));
  if (random.chance(50)) lines.emplace_back("announce");
  lines.push_back(press(random));
  return lines;
}

// A player is started hidden, and something becomes of it.
Strings hiddenStart(Random& random) {
  Strings lines = {"track none", pressPlay(random), advance(random)};
  static const Strings then = {"end com.spotify.client",
                               "end com.apple.podcasts",
                               "front com.spotify.client",
                               "boot",
                               "new-controller",
                               "tap-icon com.spotify.client",
                               "open com.spotify.client foreground"};
  lines.push_back(random.of(then));
  lines.push_back(advance(random));
  return lines;
}

// ---- What may be drawn, with its weight

struct Row {
  std::size_t weight;
  std::string (*draw)(Random&);
  Strings (*story)(Random&) = nullptr;  // in its place
};

constexpr Row kRows[] = {
    {12, setting},
    {2, settingsFile},
    {8, [](Random&) -> std::string { return "announce"; }},
    {4, [](Random&) -> std::string { return "boot"; }},
    {14, advance},
    {6, [](Random& r) { return "locked " + yesNo(r); }},
    {2, [](Random& r) -> std::string { return r.chance(50) ? "screen on" : "screen off"; }},
    {2, [](Random& r) { return "call " + yesNo(r); }},
    {1, [](Random& r) { return "version " + r.of(kVersions); }},
    {1, nullptr, drawUpdate},
    {3, drawFramework},
    {1, drawSelectors},
    {2, drawMissingMethod},
    {2, [](Random& r) { return "daemon " + r.of(kDaemons); }},
    {1, [](Random& r) { return "end " + r.of(kDaemons); }},
    {3, [](Random& r) { return fmt::format("app {} \"Name {}\"", r.of(kApps), r.below(9)); }},
    {1, [](Random& r) { return "unlist " + r.of(kApps); }},
    {1, missingClass},
    {2, [](Random& r) { return "addon " + r.of(kAddOns); }},
    {3, [](Random& r) { return "front " + (r.chance(40) ? "none" : anApp(r)); }},
    {2, [](Random& r) { return "running " + anApp(r) + " " + yesNo(r); }},
    {5, track},
    {2, player},
    {2, [](Random& r) { return fmt::format("account a{}", r.below(4)); }},
    {1,
     [](Random& r) -> std::string {
       return r.chance(60) ? "accounts granted" : "accounts refused";
     }},
    {2, network},
    {1,
     [](Random& r) -> std::string {
       return r.chance(50) ? "can-open tweetbot:" : "can-open twitter:";
     }},
    {6, [](Random& r) { return "start " + anApp(r); }},
    {5, [](Random& r) { return "end " + anApp(r); }},
    {5,
     [](Random& r) { return "open " + anApp(r) + (r.chance(60) ? " foreground" : " suspended"); }},
    {14, tapTransport},
    {4, [](Random&) -> std::string { return "tap-title"; }},
    {6, [](Random& r) { return "tap-icon " + anApp(r); }},
    {10, remote},
    {2, [](Random&) -> std::string { return "new-controller"; }},
    {3, watch},
    {6,
     [](Random& r) -> std::string {
       return std::string("headphones ") + (r.chance(70) ? "in" : "out") +
              (r.chance(30) ? " off-main" : "");
     }},
    {4, during},
    {2,
     [](Random& r) -> std::string { return r.chance(50) ? "now-playing yes" : "now-playing nil"; }},
    {4, [](Random& r) { return "process-launched " + anApp(r); }},
    {4, [](Random& r) { return "quit-card " + anApp(r); }},
    {10, [](Random&) -> std::string { return "unlock"; }},
    {3, [](Random& r) { return "passcode " + yesNo(r) + " " + yesNo(r) + " " + yesNo(r); }},
    {1, [](Random&) -> std::string { return "display-off"; }},
    {1, [](Random&) -> std::string { return "drag-lock-screen"; }},
    {8, titleView},
    {6, widget},
    {10, press},
    {4, [](Random& r) { return "post " + in(r.of(kSignals)); }},
    {2,
     [](Random& r) -> std::string {
       return r.chance(70) ? "arguments telling" : "arguments plain";
     }},
    {2, neighbour},
    {1, category},
    {3, usedCategory},
    {4, drawPageCommand},
    {4, nullptr, drawPageVisit},
    {5, nullptr, deferredLaunch},
    {2, nullptr, greeting},
    {4, nullptr, interrupted},
    {4, nullptr, hiddenStart},
};

}  // namespace

std::vector<std::string> drawBeginning(Random& random) {
  Strings lines;
  for (const std::string& app : kApps)
    if (app != "com.apple.Music" && random.chance(90))
      lines.push_back("app " + app + " " + in("App " + app));
  // Mostly a version that the library acts on, and one band as often as another.
  lines.push_back("version " + random.of(kVersions));
  if (random.chance(50)) lines.emplace_back("selectors of-version");
  for (std::size_t i = random.chance(30) ? random.below(3) : 0; i > 0; --i)
    lines.push_back(drawFramework(random));
  if (random.chance(25)) lines.push_back(drawMissingMethod(random));
  for (const std::string& addOn : kAddOns)
    if (random.chance(25)) lines.push_back("addon " + addOn);
  if (random.chance(50)) lines.emplace_back("arguments telling");
  if (random.chance(40)) lines.push_back(neighbour(random));
  if (random.chance(20)) lines.push_back(category(random));
  if (random.chance(85)) {
    lines.emplace_back("prefs iea9AQXrEmhSZ4u yes");
    lines.push_back("prefs 2I8UQMOAwU5nnNZt " + in(anApp(random)));
    for (const std::string& key : kSwitches)
      if (random.chance(50)) lines.push_back("prefs " + key + " yes");
    if (random.chance(50)) lines.push_back("prefs RjNkaiHs98230Xx " + in(anApp(random)));
  }
  lines.emplace_back("boot");
  return lines;
}

std::vector<std::string> drawCommands(Random& random) {
  static const std::size_t total = [] {
    std::size_t sum = 0;
    for (const Row& row : kRows) sum += row.weight;
    return sum;
  }();
  std::size_t at = random.below(total);
  for (const Row& row : kRows) {
    if (at < row.weight) return row.story ? row.story(random) : Strings{row.draw(random)};
    at -= row.weight;
  }
  return {};
}

}  // namespace sim::explore
