// Which call of the platform's each command makes, as the trace shows it. Leaves out commands that
// make none.
#include <fmt/format.h>

#include <algorithm>

#include "sim/explore/invariants.hpp"

namespace sim::explore {

namespace {

using Words = std::vector<std::string>;

// An object of SpringBoard's class as the platform passes it; nil where the class is missing.
std::string passed(Device& device, const std::string& cls) {
  Process* board = device.springBoard();
  return board && board->findClass(cls) ? "<" + cls + ">" : "nil";
}

std::string upper(const std::string& yesNo) { return yesNo == "yes" ? "YES" : "NO"; }

// What an app is told to have been launched as.
std::string launchedProcess(const Device& device) {
  return device.state.tellingArguments ? "<NSObject>" : "nil";
}

std::optional<StockCall> titleView(const Words& words, const Device& device) {
  const std::string cls = "MPUMediaControlsTitlesView";
  if (words[1] == "new")
    return StockCall{cls, "initWithMediaControlsStyle:",
                     fmt::format("-[{} initWithMediaControlsStyle:{}]", cls,
                                 device.state.tellingArguments ? 3 : 0)};
  if (words[1] == "free") return StockCall{cls, "dealloc", "-[" + cls + " dealloc]"};
  // The library may show another name, but shows one.
  return StockCall{
      cls, "updateNowPlayingAppDisplayName:", "-[" + cls + " updateNowPlayingAppDisplayName:*]"};
}

std::optional<StockCall> quitCard(const Words& words, Device& device) {
  const double version = device.state.version;
  if (version < 900.0) {
    const auto& apps = device.state.apps;
    const auto index = std::ranges::find(apps, words[1], &App::identifier) - apps.begin();
    return StockCall{"SBAppSliderController", "_quitAppAtIndex:",
                     fmt::format("-[SBAppSliderController _quitAppAtIndex:{}]", index)};
  }
  const std::string selector = version < 1240.1 ? "removeDisplayItem:" : "remove:";
  return StockCall{"SBAppSwitcherModel", selector,
                   "-[SBAppSwitcherModel " + selector + passed(device, "SBDisplayItem") + "]"};
}

std::optional<StockCall> widget(const Words& words, Device& device) {
  const std::string controls = "MPUSystemMediaControlsViewController";
  if (words[1] == "Acapella")
    return StockCall{controls, "action_OpenApp", "-[" + controls + " action_OpenApp]",
                     PassedOn::OnceOrNever};
  if (words[1] == "Acapella2")
    return StockCall{controls, "action_openapp", "-[" + controls + " action_openapp]",
                     PassedOn::OnceOrNever};
  if (words[1] == "MiniPlayer")
    return StockCall{"MPMiniPlayerActionsDelegate", "openNowPlayingApp",
                     "-[MPMiniPlayerActionsDelegate openNowPlayingApp]", PassedOn::OnceOrNever};
  return StockCall{
      "AuxoCollectionView", "activateApplicationWithDisplayIdentifier:fromCell:",
      fmt::format("-[AuxoCollectionView activateApplicationWithDisplayIdentifier:\"{}\" "
                  "fromCell:{}]",
                  words[2], words[3] == "cell" ? passed(device, "AuxoCell") : "nil"),
      PassedOn::OnceOrNever};
}

std::optional<StockCall> lockScreen(const Words& words, const Device& device) {
  const std::string cls = "SBLockScreenViewController";
  if (words[0] == "unlock")
    return StockCall{cls, "finishUIUnlockFromSource:",
                     fmt::format("-[{} finishUIUnlockFromSource:{}]", cls,
                                 device.state.tellingArguments ? 2 : 0)};
  if (words[0] == "display-off")
    return StockCall{cls, "_handleDisplayTurnedOff", "-[" + cls + " _handleDisplayTurnedOff]"};
  return StockCall{
      cls, "setPasscodeLockVisible:animated:completion:",
      fmt::format("-[{} setPasscodeLockVisible:{} animated:{} completion:{}]", cls, upper(words[1]),
                  upper(words[2]), words[3] == "yes" ? "<block>" : "nil")};
}

std::optional<StockCall> watch(const Words& words) {
  const bool taken = words[1] == "0" || words[1] == "1" || words[1] == "2";
  return StockCall{"GCMMusicController",
                   "didReceiveCommand:", "-[GCMMusicController didReceiveCommand:" + words[1] + "]",
                   taken ? PassedOn::OnceOrNever : PassedOn::Once, kGarmin};
}

}  // namespace

std::optional<StockCall> stockCall(const Words& words, Device& device) {
  const std::string& name = words[0];
  const std::string controls = "MPUSystemMediaControlsViewController";
  if (name == "tap-transport")
    return StockCall{controls, "transportControlsView:tapOnControlType:",
                     "-[" + controls +
                         " transportControlsView:" + passed(device, "MPUTransportControlsView") +
                         " tapOnControlType:" + words[1] + "]",
                     PassedOn::OnceOrNever};
  if (name == "tap-title")
    return StockCall{controls, "mediaControlsTitlesViewWasTapped:",
                     "-[" + controls + " mediaControlsTitlesViewWasTapped:" +
                         passed(device, "MPUMediaControlsTitlesView") + "]",
                     PassedOn::OnceOrNever};
  if (name == "tap-icon")
    return StockCall{"SBIconController", "_launchIcon:",
                     "-[SBIconController _launchIcon:" + passed(device, "SBApplicationIcon") + "]"};
  if (name == "open")
    return StockCall{
        "SpringBoard", "launchApplicationWithIdentifier:suspended:",
        fmt::format("-[SpringBoard launchApplicationWithIdentifier:\"{}\" suspended:{}]", words[1],
                    words[2] == "suspended" ? "YES" : "NO")};
  if (name == "now-playing")
    return StockCall{"SBMediaController", "setNowPlayingInfo:",
                     std::string("-[SBMediaController setNowPlayingInfo:") +
                         (words[1] == "yes" ? "<NSDictionary>]" : "nil]")};
  if (name == "process-launched" || name == "start")
    return StockCall{
        "SBApplication", "processDidLaunch:",
        "-[SBApplication(" + words[1] + ") processDidLaunch:" + launchedProcess(device) + "]"};
  if (name == "drag-lock-screen")
    return StockCall{"SBLockScreenScrollView", "touchesShouldCancelInContentView:",
                     "-[SBLockScreenScrollView touchesShouldCancelInContentView:<UIView>]"};
  if (name == "title-view") return titleView(words, device);
  if (name == "quit-card") return quitCard(words, device);
  if (name == "widget") return widget(words, device);
  if (name == "watch") return watch(words);
  if (name == "unlock" || name == "display-off" || name == "passcode")
    return lockScreen(words, device);
  return std::nullopt;
}

}  // namespace sim::explore
