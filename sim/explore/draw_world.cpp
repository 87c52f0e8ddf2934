#include "sim/explore/draw_world.hpp"

#include "sim/core/framework.hpp"
#include "sim/explore/names.hpp"

namespace sim::explore {

namespace {

const std::string kPlaybackControllerInit =
    "SPTNowPlayingPlaybackController initWithPlayer:trackPosition:radioThumbsStateManager:"
    "adsManager:trackMetadataQueue:";

// Any other method is one that every supported version answers: without it no process could go on.
const std::vector<std::string> kDispensable = {
    // Hooked
    "SpringBoard init",
    "SpringBoard applicationDidFinishLaunching:",
    "MPUSystemMediaControlsViewController transportControlsView:tapOnControlType:",
    "MPUSystemMediaControlsViewController mediaControlsTitlesViewWasTapped:",
    "MPUSystemMediaControlsViewController action_OpenApp",
    "SBIconController _launchIcon:",
    "SBMediaController setNowPlayingInfo:",
    "SBLockScreenViewController finishUIUnlockFromSource:",
    "SBLockScreenViewController setPasscodeLockVisible:animated:completion:",
    "SBLockScreenViewController _handleDisplayTurnedOff",
    "SBLockScreenScrollView touchesShouldCancelInContentView:",
    "SBAppSuggestionManager init",
    "SBAppSliderController _quitAppAtIndex:",
    "SBAppSwitcherModel removeDisplayItem:",
    "SBAppSwitcherModel remove:",
    "SBApplication processDidLaunch:",
    "AuxoCollectionView activateApplicationWithDisplayIdentifier:fromCell:",
    "MPMiniPlayerActionsDelegate openNowPlayingApp",
    kPlaybackControllerInit,
    "SpotifyAppDelegate application:didFinishLaunchingWithOptions:",
    "MTAppDelegate application:willFinishLaunchingWithOptions:",
    "MTAppDelegate_iOS application:willFinishLaunchingWithOptions:",
    "GCMMusicController didReceiveCommand:",
    // Asked for
    "SPTNowPlayingPlaybackController player",
    "SPTPlayer playerState",
    "SPTPlayer setPaused:",
    "SPTPlayerState isPlaying",
    "SPTPlayerState isPaused",
    "StateController sharedStateController",
    "StateController saveState",
    "MTPlayerController sharedInstance",
    "MTPlayerController player",
    "MTPlayerController isPlaying",
    "MTPlayerController playerViewController",
    "MTPlayerViewController player",
    "MTPlayer play",
    "NSNumber boolValue",
    "NSString boolValue",
};

}  // namespace

std::string drawFramework(Random& random) {
  static const std::vector<std::string> presences = {"loaded", "late", "missing"};
  const auto images = frameworkImages();
  return std::string("framework ") + images[random.below(images.size())].name + " " +
         random.of(presences);
}

std::string drawSelectors(Random& random) {
  return random.chance(60) ? "selectors of-version" : "selectors every";
}

std::string drawMissingMethod(Random& random) { return "no-method " + random.of(kDispensable); }

std::vector<std::string> drawUpdate(Random& random) {
  return {"version " + random.of(kVersions), "boot"};
}

}  // namespace sim::explore
