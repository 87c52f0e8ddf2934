// Commands that set the device up, without any event. Leaves out what a phone would tell its
// processes of such a change: nobody hears of it.
#include <algorithm>

#include "sim/core/class_definition.hpp"
#include "sim/platform/device_actions.hpp"
#include "sim/scenario/commands.hpp"
#include "sim/scenario/settings_file.hpp"
#include "sim/springboard/springboard.hpp"

namespace sim::scenario {

namespace {

Action version(Arguments& words) {
  const double value = words.number("a version");
  return doing([=](Device& device) { device.setVersion(value); });
}

// Also renames an app that is there, and has AppList list it again.
Action app(Arguments& words) {
  const std::string id = words.identifier();
  const std::string name = words.quoted("the name");
  return doing([=](Device& device) {
    if (App* known = device.state.app(id)) {
      known->name = name;
      known->listed = true;
      if (Process* board = device.springBoard()) dropApplicationObject(*board, id);
    } else {
      device.state.apps.push_back({id, name});
    }
  });
}

Action unlistApp(Arguments& words) {
  const std::string id = words.identifier();
  return doing([=](Device& device) { unlist(device, id); });
}

std::string knownClass(Arguments& words, const std::string& command) {
  const std::string name = words.bare("a class");
  if (!isKnownClass(name)) throw SyntaxError(command + ": no class " + name + " is known");
  return name;
}

Action noClass(Arguments& words) {
  const std::string name = knownClass(words, "no-class");
  return doing([=](Device& device) { removeClass(device, name); });
}

Action addOn(Arguments& words) {
  static constexpr const char* kNames[] = {"Acapella", "Acapella2", "Auxo", "MiniPlayer"};
  const std::string name = kNames[words.oneOf({"Acapella", "Acapella2", "Auxo", "MiniPlayer"})];
  return doing([=](Device& device) { device.state.addOns.insert(name); });
}

Action framework(Arguments& words) {
  const std::string name = words.bare("a framework");
  const auto image = std::ranges::find(frameworkImages(), name, &FrameworkImage::name);
  if (image == frameworkImages().end())
    throw SyntaxError("framework: no framework " + name + " is known");
  const auto presence = static_cast<Presence>(words.oneOf({"loaded", "late", "missing"}));
  return doing([=, framework = image->framework](Device& device) {
    device.state.frameworks[framework] = presence;
  });
}

Action selectors(Arguments& words) {
  const bool ofVersion = words.oneOf({"every", "of-version"}) == 1;
  return doing([=](Device& device) { device.state.selectorsOfVersion = ofVersion; });
}

Action noMethod(Arguments& words) {
  const std::string className = knownClass(words, "no-method");
  const std::string selector = words.bare("a selector");
  return doing([=](Device& device) { device.state.missingMethods.insert({className, selector}); });
}

SettingValue settingValue(Arguments& words) {
  if (!words.atEnd() && words.peek().quoted) return words.quoted("a value");
  if (!words.atEnd()) {
    const std::string& text = words.peek().text;
    if (text == "yes" || text == "no") return words.yesNo();
    if (text == "absent") {
      words.bare("a value");
      return Absent{};
    }
  }
  return static_cast<std::int64_t>(
      words.whole("yes, no, a \"text\", a whole number or absent", INT64_MIN, INT64_MAX));
}

Action prefs(Arguments& words) {
  const std::string key = words.bare("a key");
  const SettingValue value = settingValue(words);
  return doing([=](Device& device) { setSetting(device, key, value); });
}

std::string fromHex(const std::string& digits) {
  const auto digit = [](char c) -> int {
    if (c >= '0' && c <= '9') return c - '0';
    if (c >= 'a' && c <= 'f') return c - 'a' + 10;
    if (c >= 'A' && c <= 'F') return c - 'A' + 10;
    throw SyntaxError(std::string("prefs-file: ") + c + " is no hexadecimal digit");
  };
  if (digits.size() % 2) throw SyntaxError("prefs-file: an odd number of hexadecimal digits");
  std::string bytes;
  for (std::size_t i = 0; i < digits.size(); i += 2)
    bytes += static_cast<char>(digit(digits[i]) * 16 + digit(digits[i + 1]));
  return bytes;
}

Action prefsFile(Arguments& words) {
  std::string bytes;
  if (!words.atEnd() && words.peek().quoted) {
    bytes = words.quoted("the contents");
  } else {
    words.oneOf({"hex"});
    bytes = fromHex(words.bare("a byte in hexadecimal digits"));
  }
  return doing([=](Device& device) { writeSettings(device, bytes); });
}

Action prefsRemove(Arguments&) {
  return doing([](Device& device) { removeSettings(device); });
}

Action prefsReadOnly(Arguments& words) {
  const bool value = words.yesNo();
  return doing([=](Device& device) { device.state.settingsReadOnly = value; });
}

Action locked(Arguments& words) {
  const bool value = words.yesNo();
  return doing([=](Device& device) { device.state.locked = value; });
}

Action screen(Arguments& words) {
  const bool on = words.oneOf({"on", "off"}) == 0;
  return doing([=](Device& device) { device.state.screenOn = on; });
}

Action call(Arguments& words) {
  const bool value = words.yesNo();
  return doing([=](Device& device) { device.state.inCall = value; });
}

Action tellingArguments(Arguments& words) {
  const bool telling = words.oneOf({"plain", "telling"}) == 1;
  return doing([=](Device& device) { device.state.tellingArguments = telling; });
}

Action neighbour(Arguments& words) {
  static constexpr Neighbour kAll[] = {Neighbour::None, Neighbour::Before, Neighbour::After};
  const Neighbour value = kAll[words.oneOf({"none", "before", "after"})];
  return doing([=](Device& device) { device.state.neighbour = value; });
}

Action category(Arguments& words) {
  const std::string name = words.oneOf({"UIAlertView", "NSTimer"}) == 0 ? "UIAlertView" : "NSTimer";
  return doing([=](Device& device) { device.state.categories.insert(name); });
}

Action front(Arguments& words) {
  const std::string id = words.identifier();
  return doing([=](Device& device) {
    device.state.front = id == "none" ? std::nullopt : std::optional(id);
  });
}

Action running(Arguments& words) {
  const std::string id = words.identifier();
  const bool value = words.yesNo();
  return doing([=](Device& device) { setRunning(device, id, value); });
}

Action track(Arguments& words) {
  const std::string id = words.identifier();
  if (id == "none") return doing([](Device& device) { device.state.track.reset(); });
  const bool playing = words.oneOf({"playing", "paused"}) == 0;
  return doing([=](Device& device) { device.state.track = Track{id, playing}; });
}

// What is said of a player.
std::function<void(PlayerTemper&)> playerChange(Arguments& words) {
  switch (words.oneOf({"after", "never", "replaced", "vanishes", "reports"})) {
    case 0: {
      const auto nudges = static_cast<int>(words.whole("a number of nudges", 1, kMostInt));
      return [=](PlayerTemper& temper) { temper.after = nudges; };
    }
    case 1:
      return [](PlayerTemper& temper) { temper.after.reset(); };
    case 2: {
      const bool replaced = words.yesNo();
      return [=](PlayerTemper& temper) { temper.replaced = replaced; };
    }
    case 3: {
      const auto every = static_cast<unsigned>(words.whole("how often", 0, kMostInt));
      return [=](PlayerTemper& temper) { temper.vanishes = every; };
    }
    default: {
      std::optional<PlayerTemper::Report> report;
      if (!words.atEnd() && words.peek().text == "truth")
        words.bare("truth");
      else
        report = PlayerTemper::Report{words.yesNo(), words.yesNo()};
      return [=](PlayerTemper& temper) { temper.reports = report; };
    }
  }
}

Action player(Arguments& words) {
  const std::string id = words.identifier();
  if (id != kSpotify && id != kPodcasts)
    throw SyntaxError("player: only " + kSpotify + " and " + kPodcasts + " are players, not " + id);
  const auto change = playerChange(words);
  return doing([=](Device& device) { change(device.state.players[id]); });
}

Action account(Arguments& words) {
  const std::string name = words.bare("a name");
  return doing([=](Device& device) { device.state.accounts.push_back(name); });
}

Action accounts(Arguments& words) {
  const bool granted = words.oneOf({"granted", "refused"}) == 0;
  return doing([=](Device& device) { device.state.accountsGranted = granted; });
}

Action network(Arguments& words) {
  std::optional<std::uint32_t> flags;
  if (!words.atEnd() && !words.peek().quoted && words.peek().text == "unavailable")
    words.bare("flags");
  else
    flags = words.hexadecimal("flags");
  return doing([=](Device& device) { device.state.networkFlags = flags; });
}

Action language(Arguments& words) {
  const std::string code = words.bare("a language");
  return doing([=](Device& device) { device.state.language = code; });
}

// With or without the colon that ends a scheme.
Action canOpen(Arguments& words) {
  std::string scheme = words.bare("a scheme");
  if (scheme.ends_with(':')) scheme.pop_back();
  return doing([=](Device& device) { device.state.openableSchemes.insert(scheme); });
}

}  // namespace

const std::vector<CommandRow>& setUpCommands() {
  static const std::vector<CommandRow> rows = {
      {"version", version},
      {"app", app},
      {"unlist", unlistApp},
      {"no-class", noClass},
      {"addon", addOn},
      {"prefs", prefs},
      {"prefs-file", prefsFile},
      {"prefs-remove", prefsRemove},
      {"prefs-readonly", prefsReadOnly},
      {"locked", locked},
      {"screen", screen},
      {"call", call},
      {"front", front},
      {"arguments", tellingArguments},
      {"neighbour", neighbour},
      {"category", category},
      {"running", running},
      {"track", track},
      {"player", player},
      {"account", account},
      {"accounts", accounts},
      {"network", network},
      {"can-open", canOpen},
      {"language", language},
      {"framework", framework},
      {"selectors", selectors},
      {"no-method", noMethod},
  };
  return rows;
}

}  // namespace sim::scenario
