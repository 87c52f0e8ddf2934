// Commands that make something happen. Leaves out how: sim/platform/device_actions.hpp and
// sim/settings/settings_app.hpp do it.
#include "sim/platform/device_actions.hpp"
#include "sim/scenario/commands.hpp"
#include "sim/scenario/script.hpp"
#include "sim/settings/preferences_daemon.hpp"
#include "sim/settings/settings_app.hpp"

namespace sim::scenario {

namespace {

constexpr long long kMostCommand = 4294967295;

// The main thread, unless the line ends in `off-main`.
Thread optionalThread(Arguments& words) {
  if (words.atEnd()) return Thread::Main;
  words.oneOf({"off-main"});
  return Thread::Other;
}

Action bootCommand(Arguments&) { return doing(boot); }

Action startCommand(Arguments& words) {
  const std::string id = words.identifier();
  return doing([=](Device& device) { start(device, id); });
}

Action daemonCommand(Arguments& words) {
  const std::string name = words.bare("a name");
  return doing([=](Device& device) { startDaemon(device, name); });
}

Action endCommand(Arguments& words) {
  const std::string id = words.identifier();
  return doing([=](Device& device) { end(device, id); });
}

Action openCommand(Arguments& words) {
  const std::string id = words.identifier();
  const bool suspended = words.oneOf({"foreground", "suspended"}) == 1;
  return doing([=](Device& device) { open(device, id, suspended); });
}

Action tapTransportCommand(Arguments& words) {
  const auto type = static_cast<long>(words.whole("a control type", 0, kMostInt));
  return doing([=](Device& device) { tapTransport(device, type); });
}

Action tapTitleCommand(Arguments&) { return doing(tapTitle); }

Action tapIconCommand(Arguments& words) {
  const std::string id = words.identifier();
  return doing([=](Device& device) { tapIcon(device, id); });
}

Action remoteCommand(Arguments& words) {
  const auto number = static_cast<unsigned>(words.whole("a command", 0, kMostCommand));
  if (words.atEnd()) return [=](Device& device) { return remote(device, number); };
  words.oneOf({"in"});
  const std::string id = words.identifier();
  const Thread thread = optionalThread(words);
  return [=](Device& device) { return remoteIn(device, number, id, thread); };
}

Action newControllerCommand(Arguments&) { return doing(newController); }

Action watchCommandLine(Arguments& words) {
  const auto number = static_cast<long>(words.whole("a command", 0, kMostCommand));
  return doing([=](Device& device) { watchCommand(device, number); });
}

Action headphonesCommand(Arguments& words) {
  const bool connected = words.oneOf({"in", "out"}) == 0;
  const Thread thread = optionalThread(words);
  return doing([=](Device& device) { headphones(device, connected, thread); });
}

Action nowPlayingCommand(Arguments& words) {
  const bool anything = words.oneOf({"yes", "nil"}) == 0;
  return doing([=](Device& device) { nowPlaying(device, anything); });
}

Action processLaunchedCommand(Arguments& words) {
  const std::string id = words.identifier();
  return doing([=](Device& device) { processLaunched(device, id); });
}

Action quitCardCommand(Arguments& words) {
  const std::string id = words.identifier();
  return doing([=](Device& device) { quitCard(device, id); });
}

Action unlockCommand(Arguments&) { return doing(unlock); }

Action passcodeCommand(Arguments& words) {
  const bool visible = words.yesNo();
  const bool animated = words.yesNo();
  const bool completion = words.yesNo();
  return doing([=](Device& device) { passcode(device, visible, animated, completion); });
}

Action displayOffCommand(Arguments&) { return doing(displayOff); }

Action dragLockScreenCommand(Arguments&) {
  return [](Device& device) { return dragLockScreen(device); };
}

Action titleViewCommand(Arguments& words) {
  const std::size_t what = words.oneOf({"new", "free", "show"});
  const std::string name = words.bare("a title view");
  if (what == 0) return doing([=](Device& device) { newTitleView(device, name); });
  if (what == 1) return doing([=](Device& device) { freeTitleView(device, name); });
  const std::string text = words.quoted("the name shown");
  return doing([=](Device& device) { showInTitleView(device, name, text); });
}

Action widgetCommand(Arguments& words) {
  static constexpr const char* kNames[] = {"Acapella", "Acapella2", "MiniPlayer", "Auxo"};
  const std::string name = kNames[words.oneOf({"Acapella", "Acapella2", "MiniPlayer", "Auxo"})];
  if (name != "Auxo") return doing([=](Device& device) { widget(device, name); });
  const std::string id = words.identifier();
  const bool cell = words.oneOf({"cell", "no-cell"}) == 0;
  return doing([=](Device& device) { auxoWidget(device, id, cell); });
}

Action pressCommand(Arguments& words) {
  const auto button = static_cast<long>(words.whole("a button", 0, kMostInt));
  return doing([=](Device& device) { pressButton(device, button); });
}

Action settingsCommand(Arguments& words) {
  const std::size_t what = words.oneOf({"open", "close", "set", "choose", "help", "reset"});
  if (what == 0) return doing(openSettings);
  if (what == 1) return doing(closeSettings);
  if (what == 4) return doing(tapHelp);
  if (what == 5) return doing([](Device& device) { resetSettings(device, Answer::Confirm); });
  const std::string label = words.quoted("a label");
  if (what == 2) {
    const bool on = words.yesNo();
    return doing([=](Device& device) { moveSwitch(device, label, on); });
  }
  const std::string app = words.identifier();
  const auto choice = app == "none" ? std::nullopt : std::optional(app);
  return doing([=](Device& device) { chooseApp(device, label, choice); });
}

Action preferencesDaemonCommand(Arguments& words) {
  words.oneOf({"restart"});
  return doing([](Device& device) { device.service<PreferencesDaemon>().restart(); });
}

Action appAlertCommand(Arguments& words) {
  const std::string id = words.identifier();
  return doing([=](Device& device) { appAlert(device, id); });
}

Action appTimerCommand(Arguments& words) {
  const std::string id = words.identifier();
  return doing([=](Device& device) { appTimer(device, id); });
}

Action postCommand(Arguments& words) {
  const std::string name = words.quoted("the notification");
  return doing([=](Device& device) { device.postDarwin(name); });
}

Action announceCommand(Arguments&) {
  return doing([](Device& device) { device.postDarwin("bfaK8ayWXeXMQum"); });
}

// What would be a mistake of the scenario by itself is left out here: by then the device may be in
// no state for it.
Action duringCommand(Arguments& words) {
  const std::string name = words.bare("a selector or function");
  const std::string line = words.quoted("a command");
  const auto content = parseLine(line);
  const auto* command = content ? std::get_if<Command>(&*content) : nullptr;
  if (!command) throw SyntaxError("during: a command expected, not \"" + line + "\"");
  return doing([name, run = command->run](Device& device) {
    device.during(name, [&device, run] {
      try {
        run(device);
      } catch (const ActionError&) {
      }
    });
  });
}

Action advanceCommand(Arguments& words) {
  const Microseconds span = words.seconds();
  return doing([=](Device& device) { device.advance(span); });
}

}  // namespace

const std::vector<CommandRow>& eventCommands() {
  static const std::vector<CommandRow> rows = {
      {"boot", bootCommand},
      {"start", startCommand},
      {"daemon", daemonCommand},
      {"end", endCommand},
      {"open", openCommand},
      {"tap-transport", tapTransportCommand},
      {"tap-title", tapTitleCommand},
      {"tap-icon", tapIconCommand},
      {"remote", remoteCommand},
      {"new-controller", newControllerCommand},
      {"watch", watchCommandLine},
      {"headphones", headphonesCommand},
      {"now-playing", nowPlayingCommand},
      {"process-launched", processLaunchedCommand},
      {"quit-card", quitCardCommand},
      {"unlock", unlockCommand},
      {"passcode", passcodeCommand},
      {"display-off", displayOffCommand},
      {"drag-lock-screen", dragLockScreenCommand},
      {"title-view", titleViewCommand},
      {"widget", widgetCommand},
      {"press", pressCommand},
      {"settings", settingsCommand},
      {"cfprefsd", preferencesDaemonCommand},
      {"app-alert", appAlertCommand},
      {"app-timer", appTimerCommand},
      {"post", postCommand},
      {"announce", announceCommand},
      {"advance", advanceCommand},
      {"during", duringCommand},
  };
  return rows;
}

}  // namespace sim::scenario
