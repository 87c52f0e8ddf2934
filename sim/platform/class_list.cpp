// Every class that the simulated platform knows, superclasses first. Stands in for the system's
// images and the add-ons'; leaves out every class that neither the library nor a scenario meets.
#include "sim/accounts/definitions.hpp"
#include "sim/apps/definitions.hpp"
#include "sim/foundation/definitions.hpp"
#include "sim/platform/title_views.hpp"
#include "sim/settings/definitions.hpp"
#include "sim/springboard/definitions.hpp"
#include "sim/uikit/definitions.hpp"

namespace sim {

const std::vector<ClassDefinition>& classDefinitions() {
  static const std::vector<ClassDefinition> all = {
      // Foundation
      defineNSObject(),
      defineBlock(),
      defineNSString(),
      defineNSNumber(),
      defineNSData(),
      defineNSDate(),
      defineNSArray(),
      defineNSMutableArray(),
      defineNSDictionary(),
      defineNSMutableDictionary(),
      defineNSTimer(),
      defineNSURL(),
      defineNSBundle(),
      defineBundlesByPath(),
      defineNSPredicate(),
      defineNSFileManager(),
      // UIKit
      defineUIView(),
      defineUIApplication(),
      defineUIAlertView(),
      defineShownAlerts(),
      // SpringBoard
      defineSpringBoard(),
      defineFBSMutableSceneSettings(),
      defineFBScene(),
      defineApplicationObjects(),
      defineSBApplication(),
      defineSBApplicationController(),
      defineShown(),
      defineSBLockScreenManager(),
      defineSBLockScreenViewController(),
      defineSBLockScreenScrollView(),
      defineSBBacklightController(),
      defineSBControlCenterController(),
      defineSBIconController(),
      defineSBApplicationIcon(),
      defineSBAppSliderController(),
      defineSBAppSwitcherModel(),
      defineSBDisplayItem(),
      defineSBAppSuggestionManager(),
      defineSBMediaController(),
      defineMPUSystemMediaControlsViewController(),
      defineMPUTransportControlsView(),
      defineMPUMediaControlsTitlesView(),
      defineTitleViews(),
      defineAVSystemController(),
      defineTUCallCenter(),
      // Accounts and Social
      defineACAccountStore(),
      defineACAccountType(),
      defineACAccount(),
      defineSLRequest(),
      // Add-ons
      defineALApplicationList(),
      defineAuxoCollectionView(),
      defineAuxoCell(),
      defineMPMiniPlayerActionsDelegate(),
      // The Settings app
      defineUINavigationItem(),
      defineUIBarButtonItem(),
      defineUISearchBar(),
      defineUITableView(),
      defineUIImage(),
      defineNSIndexPath(),
      definePSTableCell(),
      definePSSpecifier(),
      definePSListController(),
      defineSettingsNavigation(),
      defineSettingsAppList(),
      // Player apps
      defineSPTPlayerState(),
      defineSPTPlayer(),
      defineSPTNowPlayingPlaybackController(),
      defineSpotifyAppDelegate(),
      defineStateController(),
      defineMTPlayer(),
      defineMTPlayerViewController(),
      defineMTPlayerController(),
      defineMTAppDelegate(),
      defineMTAppDelegateIOS(),
      defineGCMMusicController(),
  };
  return all;
}

}  // namespace sim
