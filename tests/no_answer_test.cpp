// What becomes of a request when one of the platform's answers is missing: the row says what fails,
// what is done, and which effects are left.
#include <sstream>

#include "sim/inject/injector.hpp"
#include "sim/scenario/runner.hpp"
#include "tests/device_fixture.hpp"

namespace sim {
namespace {

using inject::FaultKind;
using inject::InjectedFault;
using inject::Injector;

struct Row {
  const char* name;
  const char* fails;
  std::vector<const char*> commands;  // behind the usual beginning
  std::vector<const char*> effects;   // of the last one
};

void PrintTo(const Row& row, std::ostream* out) { *out << row.name; }

const char* const kBeginning[] = {
    R"(app com.spotify.client "Spotify")",
    "addon Acapella",
    "prefs iea9AQXrEmhSZ4u yes",
    R"(prefs 2I8UQMOAwU5nnNZt "com.spotify.client")",
    R"(prefs RjNkaiHs98230Xx "com.spotify.client")",
    "prefs I9gqmWG8wXu6 yes",
    "prefs feo63OPBmERAd2000UpdRdCAND yes",
    "running com.spotify.client yes",
    "boot",
};

#define LAUNCH(id, suspended) \
  "-[SpringBoard launchApplicationWithIdentifier:\"" id "\" suspended:" suspended "]"
#define SCENE_BACK                                                          \
  "-[FBScene(com.spotify.client) _applyMutableSettings:<backgrounded YES> " \
  "withTransitionContext:nil completion:nil]"
#define STOCK_TAP                           \
  "-[MPUSystemMediaControlsViewController " \
  "transportControlsView:<MPUTransportControlsView> tapOnControlType:3]"
#define STOCK_TITLE                         \
  "-[MPUSystemMediaControlsViewController " \
  "mediaControlsTitlesViewWasTapped:<MPUMediaControlsTitlesView>]"

#define SETTINGS_FILE "\"/var/mobile/Library/Preferences/com.qvethmar.corvalenpro.plist\""
#define READ_SETTINGS "-[NSMutableDictionary initWithContentsOfFile:" SETTINGS_FILE "]"
#define WRITE_SETTINGS "-[NSMutableDictionary writeToFile:" SETTINGS_FILE " atomically:YES]"

const Row kRows[] = {
    {"WithoutAMediaControllerNothingCountsAsPlaying",
     "+[SBMediaController sharedInstance]",
     {"track com.apple.Music playing", "tap-transport 3"},
     {SCENE_BACK, LAUNCH("com.spotify.client", "NO")}},
    {"WithoutAMediaControllerTheTitleKeepsItsOwnAction",
     "+[SBMediaController sharedInstance]",
     {"track com.apple.Music playing", "tap-title"},
     {STOCK_TITLE}},
    {"MusicWithoutATrackLeavesTheWidgetItsOwnAction",
     "-[SBMediaController hasTrack]",
     {"track com.apple.Music playing", "widget Acapella"},
     {"-[MPUSystemMediaControlsViewController action_OpenApp]"}},
    {"MusicWithoutATrackLeavesTheTitleItsOwnAction",
     "-[SBMediaController hasTrack]",
     {"track com.apple.Music playing", "tap-title"},
     {STOCK_TITLE}},
    {"WithoutANowPlayingAppTheTitleKeepsItsOwnAction",
     "-[SBMediaController nowPlayingApplication]",
     {"track com.apple.Music playing", "tap-title"},
     {STOCK_TITLE}},
    {"AnAppWithoutAnIdentifierIsNotMusic",
     "-[SBApplication(com.apple.Music) bundleIdentifier]",
     {"track com.apple.Music playing", "widget Acapella"},
     {"-[MPUSystemMediaControlsViewController action_OpenApp]"}},
    {"WithoutALockScreenManagerTheDeviceCountsAsUnlocked",
     "+[SBLockScreenManager sharedInstance]",
     {"locked yes", "tap-transport 3"},
     {SCENE_BACK, LAUNCH("com.spotify.client", "NO")}},
    {"WithoutALockScreenThePasscodeCannotBeShownButTheLaunchWaits",
     "-[SBLockScreenManager lockScreenViewController]",
     {"locked yes", "tap-transport 3"},
     {"-[SBControlCenterController dismissAnimated:YES]"}},
    {"WithoutALockScreenTheLaunchIsStillDoneAtUnlock",
     "-[SBLockScreenManager lockScreenViewController]",
     {"locked yes", "tap-transport 3", "unlock"},
     {"-[SBLockScreenViewController finishUIUnlockFromSource:0]", SCENE_BACK,
      LAUNCH("com.spotify.client", "NO")}},
    {"WithoutABacklightTheScreenIsNotLit",
     "+[SBBacklightController sharedInstance]",
     {"locked yes", "screen off", "tap-transport 3"},
     {"-[SBControlCenterController dismissAnimated:YES]",
      "-[SBLockScreenViewController setPasscodeLockVisible:YES animated:YES withUnlockSource:0 "
      "andOptions:nil]"}},
    {"WithoutAControlCenterThereIsNoneToDismiss",
     "+[SBControlCenterController sharedInstance]",
     {"locked yes", "tap-transport 3"},
     {"-[SBLockScreenViewController setPasscodeLockVisible:YES animated:YES withUnlockSource:0 "
      "andOptions:nil]"}},
    {"WithoutAnApplicationControllerThePlayerCountsAsNotRunning",
     "+[SBApplicationController sharedInstance]",
     {"prefs KwI68FtaZGgSizb yes", "announce", "tap-transport 3"},
     {LAUNCH("com.spotify.client", "YES")}},
    {"AnAppThatIsNotFoundCountsAsNotRunning",
     R"(-[SBApplicationController applicationWithDisplayIdentifier:"com.spotify.client"])",
     {"prefs KwI68FtaZGgSizb yes", "announce", "tap-transport 3"},
     {LAUNCH("com.spotify.client", "YES")}},
    {"WithoutAppListNoPlayerIsListed",
     R"(objc_getClass("ALApplicationList"))",
     {"tap-transport 3"},
     {STOCK_TAP}},
    {"WithoutASharedListNoPlayerIsListed",
     "+[ALApplicationList sharedApplicationList]",
     {"tap-transport 3"},
     {STOCK_TAP}},
    {"AListWithoutAppsListsNone",
     "-[ALApplicationList applications]",
     {"tap-transport 3"},
     {STOCK_TAP}},
    {"AListWhoseKeysAreNothingListsNone",
     "-[NSDictionary allKeys]",
     {"remote 0"},
     {"MRMediaRemoteSendCommand(0, nil)"}},
    {"WithoutAnAudioControllerNothingIsPluggedIn",
     "+[AVSystemController sharedAVSystemController]",
     {"headphones in"},
     {}},
    {"WithoutAJackStateNothingIsPluggedIn",
     "-[AVSystemController "
     "attributeForKey:\"AVSystemController_HeadphoneJackIsConnectedAttribute\"]",
     {"headphones in"},
     {}},
    {"WithoutACallCenterThereIsNoCall",
     "+[TUCallCenter sharedInstance]",
     {"call yes", "headphones in"},
     {SCENE_BACK, LAUNCH("com.spotify.client", "NO")}},
    {"WithoutASceneTheLaunchGoesOn",
     "-[SBApplication(com.spotify.client) mainScene]",
     {"open com.spotify.client foreground"},
     {LAUNCH("com.spotify.client", "NO")}},
    {"WithoutSceneSettingsTheLaunchGoesOn",
     "-[FBScene(com.spotify.client) mutableSettings]",
     {"open com.spotify.client foreground"},
     {LAUNCH("com.spotify.client", "NO")}},
    {"WithoutASharedApplicationNothingIsLaunched",
     "+[UIApplication sharedApplication]",
     {"tap-transport 3"},
     {}},
    {"AnIconWithoutAnAppIsLaunchedByThePlatformAlone",
     "-[SBApplicationIcon applicationBundleID]",
     {"prefs iea9AQXrEmhSZ4u no", "announce", "tap-icon com.spotify.client"},
     {"-[SBIconController _launchIcon:<SBApplicationIcon>]", LAUNCH("com.spotify.client", "NO")}},
    {"APlayerWithoutANameIsShownWithoutOne",
     "-[SBApplication(com.spotify.client) displayName]",
     {"title-view new view", "title-view show view \"Music\""},
     {"-[MPUMediaControlsTitlesView updateNowPlayingAppDisplayName:nil]"}},
    {"ACardWithoutAnIdentifierIsNotTheReplacement",
     "-[SBDisplayItem displayIdentifier]",
     {"quit-card com.spotify.client"},
     {"-[SBAppSwitcherModel removeDisplayItem:<SBDisplayItem>]"}},
    {"WithoutATimerTheSceneStaysInFrontAndNothingElseHappens",
     "+[NSTimer scheduledTimerWithTimeInterval:1 target:NSTimer selector:rvExecuteSimpleBlock: "
     "userInfo:<block> repeats:YES]",
     {"prefs KwI68FtaZGgSizb yes", "announce", "process-launched com.spotify.client", "advance 60"},
     {}},
    // The settings page.
    {"ARowWithoutAKeyIsNotWritten",
     "-[PSSpecifier propertyForKey:\"key\"]",
     {"settings open", "settings set \"Play a Sound\" yes"},
     {"-[UIAlertView show] \"Corvalen Pro\" \"The setting could not be saved. It is as it was.\" "
      "[\"OK\"] tag 0",
      READ_SETTINGS}},
    {"ATextThatTheBundleDoesNotHaveIsInEnglish",
     "-[NSBundle localizedStringForKey:\"Cancel\" value:\"Cancel\" table:\"CorvalenPro\"]",
     {"settings open", "settings reset"},
     {"-[UIAlertView show] \"Reset Settings\" \"All switches go off, and no app is chosen any "
      "more.\" [\"Cancel\", \"Reset\"] tag 0",
      READ_SETTINGS, WRITE_SETTINGS, "notify_post(\"bfaK8ayWXeXMQum\")", READ_SETTINGS,
      READ_SETTINGS}},
    {"WhatThePageInheritsMayBeMissing",
     "+[PSListController instanceMethodForSelector:viewDidLoad]",
     {"settings open", "settings help"},
     {READ_SETTINGS}},
};

class NoAnswer : public ::testing::TestWithParam<Row> {};

TEST_P(NoAnswer, LeavesTheseEffects) {
  const Row& row = GetParam();
  HostLibraryLoader loader(hostLibrary());
  std::ostringstream trace;
  scenario::Output output(trace, scenario::Format::Text);
  scenario::Session session(loader, output, false);
  Injector injector({{FaultKind::Nothing, row.fails, 0}});
  session.device().injection = &injector;
  const auto play = [&](const std::string& line) {
    session.run(std::get<scenario::Command>(*scenario::parseLine(line)));
  };
  for (const char* line : kBeginning) play(line);
  for (const char* line : row.commands) play(line);
  std::vector<std::string> left;
  for (const auto& effect : session.effects()) left.push_back(effect.call);
  EXPECT_EQ(left, std::vector<std::string>(row.effects.begin(), row.effects.end()));
  EXPECT_TRUE(injector.struck()) << row.fails << " was never called";
  EXPECT_EQ(session.leaks(), std::vector<std::string>());
  session.device().injection = nullptr;
}

INSTANTIATE_TEST_SUITE_P(Rows, NoAnswer, ::testing::ValuesIn(kRows),
                         [](const auto& row) { return std::string(row.param.name); });

}  // namespace
}  // namespace sim
