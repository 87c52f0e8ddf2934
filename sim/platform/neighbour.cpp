#include "sim/platform/neighbour.hpp"

#include "sim/core/describe.hpp"
#include "sim/core/device.hpp"

namespace sim {

const std::vector<HookedMethod>& neighbourMethods() {
  static const std::vector<HookedMethod> all = {
      {"SpringBoard", "init"},
      {"SpringBoard", "applicationDidFinishLaunching:"},
      {"SpringBoard", "launchApplicationWithIdentifier:suspended:"},
      {"MPUSystemMediaControlsViewController", "transportControlsView:tapOnControlType:"},
      {"MPUSystemMediaControlsViewController", "mediaControlsTitlesViewWasTapped:"},
      {"SBIconController", "_launchIcon:"},
      {"SBMediaController", "setNowPlayingInfo:"},
      {"SBLockScreenViewController", "finishUIUnlockFromSource:"},
      {"SBLockScreenViewController", "setPasscodeLockVisible:animated:completion:"},
      {"SBLockScreenViewController", "_handleDisplayTurnedOff"},
      {"SBLockScreenScrollView", "touchesShouldCancelInContentView:"},
      {"SBAppSuggestionManager", "init"},
      {"SBAppSliderController", "_quitAppAtIndex:"},
      {"SBAppSwitcherModel", "removeDisplayItem:"},
      {"SBAppSwitcherModel", "remove:"},
      {"MPUMediaControlsTitlesView", "initWithMediaControlsStyle:"},
      {"MPUMediaControlsTitlesView", "dealloc"},
      {"MPUMediaControlsTitlesView", "updateNowPlayingAppDisplayName:"},
      {"SBApplication", "processDidLaunch:"},
      {"MPUSystemMediaControlsViewController", "action_OpenApp"},
      {"MPUSystemMediaControlsViewController", "action_openapp"},
      {"AuxoCollectionView", "activateApplicationWithDisplayIdentifier:fromCell:"},
      {"MPMiniPlayerActionsDelegate", "openNowPlayingApp"},
      {"SPTNowPlayingPlaybackController",
       "initWithPlayer:trackPosition:radioThumbsStateManager:adsManager:trackMetadataQueue:"},
      {"SpotifyAppDelegate", "application:didFinishLaunchingWithOptions:"},
      {"MTAppDelegate_iOS", "application:willFinishLaunchingWithOptions:"},
      {"MTAppDelegate", "application:willFinishLaunchingWithOptions:"},
      {"GCMMusicController", "didReceiveCommand:"},
  };
  return all;
}

namespace {

bool plays(const Process& process) {
  return process.identifier == kSpotify || process.identifier == kPodcasts ||
         process.identifier == kGarmin;
}

NativeCode passingOn(const Method& replaced) {
  NativeCode code{replaced.selector, replaced.signature};
  code.relay = true;
  code.run = [previous = replaced.implementation,
              signature = replaced.signature](Invocation& call) -> Value {
    call.process.device.effect(call.process, "neighbour " + described(call));
    return call.process.callImplementation(previous, signature, call.self, call.name,
                                           call.arguments, call.rest, call.caller);
  };
  return code;
}

}  // namespace

void hookAsNeighbour(Process& process) {
  for (const auto& [cls, selector] : neighbourMethods())
    process.hookMethod(process.findClass(cls), selector, passingOn);
  if (!plays(process)) process.hookFunction(kNeighbourFunction, passingOn);
}

}  // namespace sim
