// The whole product at a glance: what is observed and what is replaced in which process, under
// which condition, in the order of installation.
#pragma once
#include "apps/auto_play.hpp"
#include "apps/garmin.hpp"
#include "apps/play_redirect.hpp"
#include "apps/podcasts.hpp"
#include "apps/spotify.hpp"
#include "loader/rows.hpp"
#include "loader/signals.hpp"
#include "springboard/app_switcher.hpp"
#include "springboard/headphones.hpp"
#include "springboard/lock_screen.hpp"
#include "springboard/media_controls.hpp"
#include "springboard/process_tracking.hpp"
#include "springboard/remote_commands.hpp"
#include "springboard/session.hpp"
#include "springboard/signal_handlers.hpp"
#include "springboard/title_display.hpp"
#include "springboard/widgets.hpp"
#include "welcome/greeting.hpp"

namespace corvalen::loader {

// ---- SpringBoard: observers, on the Darwin center

inline constexpr ObserverRow kSpringBoardObservers[] = {
    {signals::settingsChanged, springboard::settingsChanged},
    {signals::playerStarted, springboard::playerStarted},
    {signals::launchPlayer, springboard::launchRequested},
    {signals::togglePlayback, springboard::toggleRequested},
};

// On the local center.
inline constexpr ObserverRow kSpringBoardLocalObservers[] = {
    {signals::headphoneJackChanged, springboard::headphoneJackChanged},
};

// ---- SpringBoard: hooks, by class. Rows of one group share one look-up of their class; a group
// that comes again looks its class up again.

using platform::kIOS7_0, platform::kIOS7_1, platform::kIOS8, platform::kIOS9;
using platform::kLastSupported;
using platform::method;

inline constexpr MethodRow kSpringBoard[] = {
    method<springboard::SpringBoardInit, "init">(),
    method<springboard::ApplicationDidFinishLaunching, "applicationDidFinishLaunching:">(),
    method<springboard::ApplicationLaunch, "launchApplicationWithIdentifier:suspended:">(),
};
inline constexpr MethodRow kMediaControls[] = {
    method<springboard::TransportControlTap, "transportControlsView:tapOnControlType:">(),
    method<springboard::TitleTap, "mediaControlsTitlesViewWasTapped:">(),
};
inline constexpr MethodRow kIconController[] = {
    method<springboard::IconLaunch, "_launchIcon:">(),
};
inline constexpr MethodRow kMediaController[] = {
    method<springboard::SetNowPlayingInfo, "setNowPlayingInfo:">(),
};
inline constexpr MethodRow kLockScreenViewController[] = {
    method<welcome::FinishUIUnlock, "finishUIUnlockFromSource:">(),
    method<springboard::SetPasscodeLockVisible, "setPasscodeLockVisible:animated:completion:">(),
    method<springboard::HandleDisplayTurnedOff, "_handleDisplayTurnedOff">(),
};
inline constexpr MethodRow kLockScreenScrollView[] = {
    method<springboard::TouchesShouldCancel, "touchesShouldCancelInContentView:">(),
};
inline constexpr MethodRow kAppSuggestionManager[] = {
    method<springboard::AppSuggestionManagerInit, "init">(),
};
inline constexpr MethodRow kAppSlider[] = {
    method<springboard::QuitAppAtIndex, "_quitAppAtIndex:">(),
};
inline constexpr MethodRow kAppSwitcher[] = {
    method<springboard::RemoveDisplayItem, "removeDisplayItem:">(),
};
inline constexpr MethodRow kTitlesView[] = {
    method<springboard::TitlesViewInit, "initWithMediaControlsStyle:">(),
    method<springboard::TitlesViewDealloc, "dealloc">(),
    method<springboard::UpdateNowPlayingAppDisplayName, "updateNowPlayingAppDisplayName:">(),
};
inline constexpr MethodRow kApplication[] = {
    method<springboard::ProcessDidLaunch, "processDidLaunch:">(),
};
inline constexpr MethodRow kNewerAppSwitcher[] = {
    method<springboard::RemoveItem, "remove:">(),
};

// The groups whose condition is the version: [from, below) or [from, through].
// docs/decisions.md: A hook's version is asked once
inline constexpr HookGroup kSpringBoardHooks[] = {
    {"SpringBoard", kSpringBoard, always()},
    {"MPUSystemMediaControlsViewController", kMediaControls, always()},
    {"SBIconController", kIconController, always()},
    {"SBMediaController", kMediaController, always()},
    {"SBLockScreenViewController", kLockScreenViewController, always()},
    {"SBLockScreenScrollView", kLockScreenScrollView, always()},
    {"SBAppSuggestionManager", kAppSuggestionManager, always()},
    {"SBAppSliderController", kAppSlider, fromBelow(kIOS7_0, kIOS8)},
    {"SBAppSwitcherModel", kAppSwitcher, fromBelow(kIOS8, kIOS9)},
    {"MPUMediaControlsTitlesView", kTitlesView, fromThrough(kIOS7_1, kLastSupported)},
    {"SBApplication", kApplication, fromThrough(kIOS8, kLastSupported)},
    {"SBAppSwitcherModel", kNewerAppSwitcher, from(kIOS9)},
};

// Other developers' widgets, each where its library is.
namespace add_on {
using platform::ConstantText;
using platform::kConstantText;
inline constexpr ConstantText acapella =
    kConstantText<"/Library/MobileSubstrate/DynamicLibraries/Acapella.dylib">;
inline constexpr ConstantText acapella2 =
    kConstantText<"/Library/MobileSubstrate/DynamicLibraries/Acapella2.dylib">;
inline constexpr ConstantText auxo =
    kConstantText<"/Library/MobileSubstrate/DynamicLibraries/Auxo.dylib">;
inline constexpr ConstantText miniPlayer =
    kConstantText<"/Library/MobileSubstrate/DynamicLibraries/MiniPlayer.dylib">;
}  // namespace add_on

inline constexpr AddOnRow kAddOnHooks[] = {
    {add_on::acapella, "MPUSystemMediaControlsViewController",
     method<springboard::AcapellaOpenApp, "action_OpenApp">()},
    {add_on::acapella2, "MPUSystemMediaControlsViewController",
     method<springboard::Acapella2OpenApp, "action_openapp">()},
    {add_on::auxo, "AuxoCollectionView",
     method<springboard::AuxoActivateApplication,
            "activateApplicationWithDisplayIdentifier:fromCell:">()},
    {add_on::miniPlayer, "MPMiniPlayerActionsDelegate",
     method<springboard::MiniPlayerOpenApp, "openNowPlayingApp">()},
};

// And last the function MRMediaRemoteSendCommand, by springboard::RemoteCommand, where MediaRemote
// can be loaded.

// ---- Player apps

// Spotify and Podcasts observe the go-ahead, then say that they have started.
inline constexpr ObserverRow kPlayerObservers[] = {
    {signals::startPlaying, apps::startPlaying},
};

inline constexpr MethodRow kPlaybackController[] = {
    method<apps::PlaybackControllerInit,
           "initWithPlayer:trackPosition:radioThumbsStateManager:adsManager:"
           "trackMetadataQueue:">(),
};
inline constexpr MethodRow kSpotifyDelegate[] = {
    method<apps::SpotifyDidFinishLaunching, "application:didFinishLaunchingWithOptions:">(),
};
inline constexpr HookGroup kSpotifyHooks[] = {
    {"SPTNowPlayingPlaybackController", kPlaybackController, always()},
    {"SpotifyAppDelegate", kSpotifyDelegate, always()},
};

inline constexpr MethodRow kPodcastsDelegate[] = {
    method<apps::PodcastsWillFinishLaunching, "application:willFinishLaunchingWithOptions:">(),
};
inline constexpr MethodRow kOlderPodcastsDelegate[] = {
    method<apps::OlderPodcastsWillFinishLaunching, "application:willFinishLaunchingWithOptions:">(),
};
inline constexpr HookGroup kPodcastsHooks[] = {
    {"MTAppDelegate_iOS", kPodcastsDelegate, from(kIOS9)},
    {"MTAppDelegate", kOlderPodcastsDelegate, below(kIOS9)},
};

// Garmin Connect has neither observers nor settings.
inline constexpr MethodRow kGarminMusic[] = {
    method<apps::DidReceiveCommand, "didReceiveCommand:">(),
};
inline constexpr HookGroup kGarminHooks[] = {
    {"GCMMusicController", kGarminMusic, always()},
};

// ---- Every other process: these observers, and MRMediaRemoteSendCommand by apps::PlayCommand.

inline constexpr ObserverRow kOtherObservers[] = {
    {signals::nowPlaying, apps::nowPlaying},
    {signals::nothingPlaying, apps::nothingPlaying},
};

}  // namespace corvalen::loader
