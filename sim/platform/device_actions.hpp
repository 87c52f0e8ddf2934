// What happens to the device: one function for each thing that the user, an app or the platform
// does. Each runs one callback of a process; what it posts or queues waits for Device::drain().
// Stands in for fingers, plugs and other programs; leaves out the way that their touch takes
// through the system until it is a message.
#pragma once
#include "sim/core/device.hpp"
#include "sim/uikit/alert_view.hpp"

namespace sim {

// The action cannot be done as the device is.
class ActionError : public std::runtime_error {
 public:
  using std::runtime_error::runtime_error;
};

// ---- Processes
void boot(Device& device);
void start(Device& device, const std::string& app);
void startDaemon(Device& device, const std::string& name);
void end(Device& device, const std::string& app);  // or a daemon
void processLaunched(Device& device, const std::string& app);

// ---- SpringBoard
// Its process; while it is not running, nothing of it can be done.
Process& springBoard(Device& device);
void open(Device& device, const std::string& app, bool suspended);
void tapTransport(Device& device, long controlType);
void tapTitle(Device& device);
void tapIcon(Device& device, const std::string& app);
void nowPlaying(Device& device, bool anything);
// The local notification is delivered inside the call that posts it, on the thread that does.
void headphones(Device& device, bool connected, Thread thread = Thread::Main);
void quitCard(Device& device, const std::string& app);
void unlock(Device& device);
void passcode(Device& device, bool visible, bool animated, bool completion);
void displayOff(Device& device);
// The scroll view's answer; nothing if there is no scroll view.
std::optional<bool> dragLockScreen(Device& device);
void pressButton(Device& device, long button);
// The system takes SpringBoard's uppermost alert away; nothing if none is up.
void dismissAlert(Device& device, Dismissal how);

// ---- Title views, by the names that the scenario gives them
void newTitleView(Device& device, const std::string& name);
void freeTitleView(Device& device, const std::string& name);
void showInTitleView(Device& device, const std::string& name, const std::string& text);

// ---- Widgets
void widget(Device& device, const std::string& addOn);
void auxoWidget(Device& device, const std::string& app, bool withCell);

// ---- Media commands; nothing if the process died of it
std::optional<bool> remote(Device& device, unsigned command);
std::optional<bool> remoteIn(Device& device, unsigned command, const std::string& app,
                             Thread thread = Thread::Main);
void newController(Device& device);
void watchCommand(Device& device, long command);

// ---- What an app does with a category of its own, in any process that has one
void appAlert(Device& device, const std::string& app);
void appTimer(Device& device, const std::string& app);

// ---- Set-up that needs a check
void unlist(Device& device, const std::string& app);
void setRunning(Device& device, const std::string& app, bool running);
void removeClass(Device& device, const std::string& name);

}  // namespace sim
