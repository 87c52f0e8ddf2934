#include "sim/platform/device_actions.hpp"

#include <algorithm>

#include "sim/apps/apps.hpp"
#include "sim/core/class_definition.hpp"
#include "sim/foundation/block.hpp"
#include "sim/foundation/string.hpp"
#include "sim/platform/app_category.hpp"
#include "sim/platform/telling.hpp"
#include "sim/springboard/media.hpp"
#include "sim/springboard/screens.hpp"
#include "sim/springboard/springboard.hpp"
#include "sim/uikit/application.hpp"

namespace sim {

Process& springBoard(Device& device) {
  Process* process = device.springBoard();
  if (!process) throw ActionError("SpringBoard is not running");
  return *process;
}

namespace {

Process& runningApp(Device& device, const std::string& app) {
  Process* process = device.process(app);
  if (!process || app == kSpringBoard) throw ActionError(app + " has no running process");
  return *process;
}

App& installed(Device& device, const std::string& app) {
  App* found = device.state.app(app);
  if (!found) throw ActionError(app + " is not installed");
  return *found;
}

// The versions at which the app switcher changed.
constexpr double kSwitcherModel = 900.0;
constexpr double kNewerSwitcherModel = 1240.1;

Value text(Process& process, const std::string& string) {
  return Value::object(process.autorelease(makeString(process, string))->address);
}

// Sends a message to the one object of a class of SpringBoard's; nothing where it is missing or
// does not answer.
using Arguments = std::function<std::vector<Value>(Process&)>;
void sendTo(Device& device, const std::string& className, const std::string& selector,
            const Arguments& arguments) {
  Process& process = springBoard(device);
  Class* cls = process.findClass(className);
  if (!cls || !cls->find(selector)) return;
  device.callback(
      process, [&] { process.send(&process.sharedInstance(*cls), selector, arguments(process)); });
}

bool hasAddOn(Device& device, const std::string& addOn) {
  return springBoard(device).addOns.contains(addOn);
}

// A view that is nobody's to free.
Value titlesViewArgument(Process& process) {
  Class* cls = process.findClass("MPUMediaControlsTitlesView");
  return cls ? Value::object(process.sharedInstance(*cls).address) : Value::nil();
}

Value fresh(Process& process, const std::string& className) {
  Class* cls = process.findClass(className);
  if (!cls) return Value::nil();
  return Value::object(process.autorelease(process.allocateInstance(*cls))->address);
}

}  // namespace

// ---- Processes

void boot(Device& device) { device.bootSpringBoard(); }

void start(Device& device, const std::string& app) {
  if (app == kSpringBoard) throw ActionError("SpringBoard starts by boot");
  installed(device, app);
  if (device.process(app)) throw ActionError(app + " is running already");
  device.startApp(app);
}

void startDaemon(Device& device, const std::string& name) {
  if (name == kSpringBoard || device.state.app(name))
    throw ActionError(name + " is an app and no daemon");
  if (device.process(name)) throw ActionError(name + " is running already");
  device.startDaemon(name);
}

void end(Device& device, const std::string& app) {
  if (app == kSpringBoard) throw ActionError("SpringBoard does not end");
  Process& process = runningApp(device, app);
  device.endProcess(process);
  if (App* known = device.state.app(app)) known->running = false;
  if (device.state.front == app) device.state.front.reset();
  if (!device.state.track || device.state.track->app != app) return;
  device.state.track.reset();
  if (Process* board = device.springBoard()) tellNowPlaying(*board, false);
}

void processLaunched(Device& device, const std::string& app) {
  Process& process = springBoard(device);
  installed(device, app);
  device.callback(process, [&] { tellProcessLaunched(process, app); });
}

// ---- SpringBoard

void open(Device& device, const std::string& app, bool suspended) {
  sendTo(device, "SpringBoard", "launchApplicationWithIdentifier:suspended:", [&](Process& p) {
    return std::vector<Value>{text(p, app), Value::boolean(suspended)};
  });
}

void tapTransport(Device& device, long controlType) {
  sendTo(device, "MPUSystemMediaControlsViewController",
         "transportControlsView:tapOnControlType:", [&](Process& p) {
           return std::vector<Value>{fresh(p, "MPUTransportControlsView"),
                                     Value::integer(Kind::Long, controlType)};
         });
}

void tapTitle(Device& device) {
  sendTo(device, "MPUSystemMediaControlsViewController", "mediaControlsTitlesViewWasTapped:",
         [](Process& p) { return std::vector<Value>{titlesViewArgument(p)}; });
}

void tapIcon(Device& device, const std::string& app) {
  sendTo(device, "SBIconController", "_launchIcon:", [&](Process& p) {
    if (!p.findClass("SBApplicationIcon")) return std::vector<Value>{Value::nil()};
    return std::vector<Value>{Value::object(iconOf(p, app)->address)};
  });
}

void nowPlaying(Device& device, bool anything) { tellNowPlaying(springBoard(device), anything); }

void headphones(Device& device, bool connected, Thread thread) {
  Process& process = springBoard(device);
  device.state.headphones = connected;
  const auto post = [&] {
    const auto observers = process.observers;
    for (const auto& observer : observers)
      if (!observer.darwin &&
          observer.name == "AVSystemController_HeadphoneJackIsConnectedDidChangeNotification")
        process.library().call(observer.callback, Kind::Void,
                               std::vector<Value>(5, Value::of(Kind::Pointer, 0)));
  };
  device.callback(process, post, thread);
}

void quitCard(Device& device, const std::string& app) {
  springBoard(device);
  installed(device, app);
  const double version = device.state.version;
  if (version < kSwitcherModel) {
    const auto& apps = device.state.apps;
    const auto index = std::ranges::find(apps, app, &App::identifier) - apps.begin();
    sendTo(device, "SBAppSliderController", "_quitAppAtIndex:", [&](Process&) {
      return std::vector<Value>{Value::integer(Kind::ULong, index)};
    });
    return;
  }
  const std::string selector = version < kNewerSwitcherModel ? "removeDisplayItem:" : "remove:";
  sendTo(device, "SBAppSwitcherModel", selector, [&](Process& p) {
    if (!p.findClass("SBDisplayItem")) return std::vector<Value>{Value::nil()};
    return std::vector<Value>{Value::object(switcherItem(p, app)->address)};
  });
}

void unlock(Device& device) {
  springBoard(device);
  device.state.locked = false;
  device.state.screenOn = true;
  device.state.passcodeShown = false;
  const int source = device.state.tellingArguments ? 2 : 0;
  sendTo(device, "SBLockScreenViewController", "finishUIUnlockFromSource:", [=](Process&) {
    return std::vector<Value>{Value::integer(Kind::Int32, source)};
  });
}

void passcode(Device& device, bool visible, bool animated, bool completion) {
  sendTo(device, "SBLockScreenViewController",
         "setPasscodeLockVisible:animated:completion:", [&](Process& p) {
           Value block = Value::nil();
           if (completion)
             block = Value::object(p.make<Block>("NSBlock", Block::Where::Global)->address);
           return std::vector<Value>{Value::boolean(visible), Value::boolean(animated), block};
         });
}

void displayOff(Device& device) {
  springBoard(device);
  device.state.screenOn = false;
  device.state.passcodeShown = false;
  sendTo(device, "SBLockScreenViewController", "_handleDisplayTurnedOff",
         [](Process&) { return std::vector<Value>{}; });
}

std::optional<bool> dragLockScreen(Device& device) {
  Process& process = springBoard(device);
  Class* cls = process.findClass("SBLockScreenScrollView");
  std::optional<bool> answer;
  if (!cls || !cls->find("touchesShouldCancelInContentView:")) return answer;
  device.callback(process, [&] {
    const Value view = fresh(process, "SBLockScreenScrollView");
    const Value content = Value::object(
        process.autorelease(process.allocateInstance(process.requireClass("UIView")))->address);
    answer = process.send(process.object(view.bits), "touchesShouldCancelInContentView:", {content})
                 .asBool();
  });
  return answer;
}

void pressButton(Device& device, long button) {
  Process& process = springBoard(device);
  UIAlertView* alert = topAlert(process);
  if (!alert) throw ActionError("no alert is shown");
  if (button < 0 || static_cast<std::size_t>(button) >= alert->buttons())
    throw ActionError("the alert has no button " + std::to_string(button));
  device.callback(process, [&] { alert->press(button); });
}

void dismissAlert(Device& device, Dismissal how) {
  Process* process = device.springBoard();
  UIAlertView* alert = process ? topAlert(*process) : nullptr;
  if (alert) device.callback(*process, [&] { alert->dismissBySystem(how); });
}

// ---- Widgets

void widget(Device& device, const std::string& addOn) {
  springBoard(device);
  const std::string controls = "MPUSystemMediaControlsViewController";
  const auto none = [](Process&) { return std::vector<Value>{}; };
  if (!hasAddOn(device, addOn)) throw ActionError("the add-on " + addOn + " is not there");
  if (addOn == "Acapella") sendTo(device, controls, "action_OpenApp", none);
  if (addOn == "Acapella2") sendTo(device, controls, "action_openapp", none);
  if (addOn == "MiniPlayer")
    sendTo(device, "MPMiniPlayerActionsDelegate", "openNowPlayingApp", none);
}

void auxoWidget(Device& device, const std::string& app, bool withCell) {
  springBoard(device);
  if (!hasAddOn(device, "Auxo")) throw ActionError("the add-on Auxo is not there");
  sendTo(device, "AuxoCollectionView",
         "activateApplicationWithDisplayIdentifier:fromCell:", [&](Process& p) {
           return std::vector<Value>{text(p, app), withCell ? fresh(p, "AuxoCell") : Value::nil()};
         });
}

// ---- Media commands

namespace {

// Whoever calls the function has loaded what exports it.
std::optional<bool> sendCommand(Process& process, unsigned command, Thread thread) {
  std::optional<bool> answer;
  if (!process.load(Framework::MediaRemote)) return answer;
  const auto send = [&] {
    answer = process
                 .callFunction("MRMediaRemoteSendCommand",
                               {Value::integer(Kind::UInt32, command), optionsArgument(process)})
                 .asBool();
  };
  process.device.callback(process, send, thread);
  return answer;
}

}  // namespace

std::optional<bool> remote(Device& device, unsigned command) {
  return sendCommand(springBoard(device), command, Thread::Main);
}

std::optional<bool> remoteIn(Device& device, unsigned command, const std::string& app,
                             Thread thread) {
  return sendCommand(runningApp(device, app), command, thread);
}

void newController(Device& device) {
  Process& process = runningApp(device, kSpotify);
  device.callback(process, [&] { makePlaybackController(process); });
}

void watchCommand(Device& device, long command) {
  Process& process = runningApp(device, kGarmin);
  if (!process.findClass("GCMMusicController")) return;
  device.callback(process, [&] {
    process.sendIfAnswered(&process.shared<Object>("GCMMusicController"),
                           "didReceiveCommand:", {Value::integer(Kind::ULong, command)});
  });
}

// ---- Categories

namespace {

Process& withCategory(Device& device, const std::string& app, const std::string& cls) {
  Process* process = device.process(app);
  if (!process) throw ActionError(app + " has no running process");
  if (!process->categories.contains(cls))
    throw ActionError(app + " has no category of its own on " + cls);
  return *process;
}

}  // namespace

void appAlert(Device& device, const std::string& app) {
  Process& process = withCategory(device, app, kAlertCategory);
  device.callback(process, [&] { useAlertCategory(process); });
}

void appTimer(Device& device, const std::string& app) {
  Process& process = withCategory(device, app, kTimerCategory);
  device.callback(process, [&] { useTimerCategory(process); });
}

// ---- Set-up

void unlist(Device& device, const std::string& app) { installed(device, app).listed = false; }

void setRunning(Device& device, const std::string& app, bool running) {
  installed(device, app).running = running;
}

void removeClass(Device& device, const std::string& name) {
  device.state.missingClasses.insert(name);
  // Looked up at each use, so gone at once; what else exists stays for its process's life.
  if (name == "ALApplicationList")
    for (Process* process : device.processes()) process->removeClass(name);
}

}  // namespace sim
