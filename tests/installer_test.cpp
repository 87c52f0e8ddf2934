// What every kind of process gets on every version, compared with the tables.
#include <fmt/format.h>

#include <cmath>

#include "tests/device_fixture.hpp"

namespace sim {
namespace {

struct Row {
  const char* call;
  double from = 0;
  double below = 1e9;
  const char* addOn = nullptr;  // whose file must be there
};

// Stated here once more, from the product's own description and not from its code.
const Row kSpringBoardRows[] = {
    {R"(CFNotificationCenterAddObserver(darwin, "bfaK8ayWXeXMQum"))"},
    {R"(CFNotificationCenterAddObserver(darwin, "QjnUR4g9fc9hLq"))"},
    {R"(CFNotificationCenterAddObserver(darwin, "VNutj2BhJMTGTwVk"))"},
    {R"(CFNotificationCenterAddObserver(darwin, "FejJ91yPhXo8E"))"},
    {"CFNotificationCenterAddObserver(local, "
     "\"AVSystemController_HeadphoneJackIsConnectedDidChangeNotification\")"},
    {"MSHookMessageEx(SpringBoard, init)"},
    {"MSHookMessageEx(SpringBoard, applicationDidFinishLaunching:)"},
    {"MSHookMessageEx(SpringBoard, launchApplicationWithIdentifier:suspended:)"},
    {"MSHookMessageEx(MPUSystemMediaControlsViewController, "
     "transportControlsView:tapOnControlType:)"},
    {"MSHookMessageEx(MPUSystemMediaControlsViewController, mediaControlsTitlesViewWasTapped:)"},
    {"MSHookMessageEx(SBIconController, _launchIcon:)"},
    {"MSHookMessageEx(SBMediaController, setNowPlayingInfo:)"},
    {"MSHookMessageEx(SBLockScreenViewController, finishUIUnlockFromSource:)"},
    {"MSHookMessageEx(SBLockScreenViewController, setPasscodeLockVisible:animated:completion:)"},
    {"MSHookMessageEx(SBLockScreenViewController, _handleDisplayTurnedOff)"},
    {"MSHookMessageEx(SBLockScreenScrollView, touchesShouldCancelInContentView:)"},
    {"MSHookMessageEx(SBAppSuggestionManager, init)"},
    {"MSHookMessageEx(SBAppSliderController, _quitAppAtIndex:)", 0, 900.0},
    {"MSHookMessageEx(SBAppSwitcherModel, removeDisplayItem:)", 900.0, 1240.1},
    {"MSHookMessageEx(MPUMediaControlsTitlesView, initWithMediaControlsStyle:)", 847.24},
    {"MSHookMessageEx(MPUMediaControlsTitlesView, dealloc)", 847.24},
    {"MSHookMessageEx(MPUMediaControlsTitlesView, updateNowPlayingAppDisplayName:)", 847.24},
    {"MSHookMessageEx(SBApplication, processDidLaunch:)", 900.0},
    {"MSHookMessageEx(SBAppSwitcherModel, remove:)", 1240.1},
    {"MSHookMessageEx(MPUSystemMediaControlsViewController, action_OpenApp)", 0, 1e9, "Acapella"},
    {"MSHookMessageEx(MPUSystemMediaControlsViewController, action_openapp)", 0, 1e9, "Acapella2"},
    {"MSHookMessageEx(AuxoCollectionView, activateApplicationWithDisplayIdentifier:fromCell:)", 0,
     1e9, "Auxo"},
    {"MSHookMessageEx(MPMiniPlayerActionsDelegate, openNowPlayingApp)", 0, 1e9, "MiniPlayer"},
    {"MSHookFunction(MRMediaRemoteSendCommand)"},
};
const Row kSpotifyRows[] = {
    {R"(CFNotificationCenterAddObserver(darwin, "GYbIKwUwyBsCan1l"))"},
    {R"(notify_post("QjnUR4g9fc9hLq"))"},
    {"MSHookMessageEx(SPTNowPlayingPlaybackController, initWithPlayer:trackPosition:"
     "radioThumbsStateManager:adsManager:trackMetadataQueue:)"},
    {"MSHookMessageEx(SpotifyAppDelegate, application:didFinishLaunchingWithOptions:)"},
};
const Row kPodcastsRows[] = {
    {R"(CFNotificationCenterAddObserver(darwin, "GYbIKwUwyBsCan1l"))"},
    {R"(notify_post("QjnUR4g9fc9hLq"))"},
    {"MSHookMessageEx(MTAppDelegate_iOS, application:willFinishLaunchingWithOptions:)", 1240.1},
    {"MSHookMessageEx(MTAppDelegate, application:willFinishLaunchingWithOptions:)", 0, 1240.1},
};
const Row kGarminRows[] = {{"MSHookMessageEx(GCMMusicController, didReceiveCommand:)"}};
const Row kOtherRows[] = {
    {R"(CFNotificationCenterAddObserver(darwin, "YHePE3bJB3diJ1T"))"},
    {R"(CFNotificationCenterAddObserver(darwin, "RjZoLhphi82WYz"))"},
    {"MSHookFunction(MRMediaRemoteSendCommand)"},
};

const double kVersions[] = {0,       847.19,  847.2,  847.20001, 847.23,  847.24,  847.27,
                            899.99,  900.0,   1140.1, 1145.14,   1145.15, 1240.09, 1240.1,
                            1242.13, 1279.99, 1280.0, 1280.01,   1280.30, 1348.22};

class Installer : public DeviceTest {
 protected:
  // What the constructor installed: hooks, observers and posts, before the process's own code.
  std::vector<std::string> installed() const {
    std::vector<std::string> rows;
    for (const auto& call : calls.all)
      if (call.starts_with("MSHook") || call.starts_with("CFNotification") ||
          call == R"(notify_post("QjnUR4g9fc9hLq"))")
        rows.push_back(call);
    return rows;
  }
  template <std::size_t Count>
  static std::vector<std::string> expected(double version, const Row (&rows)[Count],
                                           const std::set<std::string>& addOns = {}) {
    std::vector<std::string> calls;
    if (version < 847.2 || version > 1280.0) return calls;
    for (const Row& row : rows)
      if (version >= row.from && version < row.below && (!row.addOn || addOns.contains(row.addOn)))
        calls.emplace_back(row.call);
    return calls;
  }
  // Every version at which anything changes, and the nearest numbers on both of its sides.
  static std::vector<double> thresholds() {
    std::vector<double> all;
    for (const double at : {847.2, 847.24, 900.0, 1145.15, 1240.1, 1280.0}) {
      all.insert(all.end(), {std::nextafter(at, 0), at, std::nextafter(at, 2000)});
    }
    return all;
  }
  static bool hooks(const std::string& call, const std::string& className) {
    return call.starts_with("MSHookMessageEx(" + className + ",");
  }
};

TEST_F(Installer, EveryVersionAndKindOfProcessGetsItsRowsOfTheTables) {
  for (const auto& id : {kSpotify, kPodcasts, kGarmin, std::string("com.example.notes")})
    device.state.apps.push_back({id, id});
  for (const double version : kVersions) {
    device.setVersion(version);
    calls.all.clear();
    device.bootSpringBoard();
    EXPECT_EQ(installed(), expected(version, kSpringBoardRows)) << "SpringBoard " << version;
    device.drain();
    const auto check = [&](const std::string& id, const std::vector<std::string>& rows) {
      calls.all.clear();
      device.startApp(id);
      EXPECT_EQ(installed(), rows) << id << ' ' << version;
      device.endProcess(*device.process(id));
      device.drain();
    };
    check(kSpotify, expected(version, kSpotifyRows));
    check(kPodcasts, expected(version, kPodcastsRows));
    check(kGarmin, expected(version, kGarminRows));
    check("com.example.notes", expected(version, kOtherRows));
  }
}

TEST_F(Installer, EverySetOfAddOnsOnBothSidesOfEveryThresholdGetsItsRows) {
  const std::string names[] = {"Acapella", "Acapella2", "Auxo", "MiniPlayer"};
  for (const double version : thresholds())
    for (unsigned set = 0; set < 1u << std::size(names); ++set) {
      device.state.addOns.clear();
      for (std::size_t i = 0; i < std::size(names); ++i)
        if (set >> i & 1) device.state.addOns.insert(names[i]);
      device.setVersion(version);
      calls.all.clear();
      device.bootSpringBoard();
      EXPECT_EQ(installed(), expected(version, kSpringBoardRows, device.state.addOns))
          << fmt::format("{:.17g}, add-ons {}", version, fmt::join(device.state.addOns, " "));
      device.drain();
    }
}

// Add-ons and the neighbours of the names change nothing outside of SpringBoard.
TEST_F(Installer, EveryKindOfAppOnBothSidesOfEveryThresholdGetsItsRows) {
  device.state.addOns = {"Acapella", "Acapella2", "Auxo", "MiniPlayer"};
  for (const double version : thresholds()) {
    device.setVersion(version);
    const auto check = [&](const std::string& id, const std::vector<std::string>& rows) {
      calls.all.clear();
      device.startApp(id);
      EXPECT_EQ(installed(), rows) << fmt::format("'{}' {:.17g}", id, version);
      device.endProcess(*device.process(id));
      device.drain();
    };
    check(kSpotify, expected(version, kSpotifyRows));
    check(kPodcasts, expected(version, kPodcastsRows));
    check(kGarmin, expected(version, kGarminRows));
    for (const char* id : {"", "com.apple.Springboard", "com.apple.springboard2", "com.apple",
                           "com.Spotify.client", "com.spotify.client.widget", "com.apple.Podcasts",
                           "com.garmin.connect", "com.apple.Music", "BTLEServer"})
      check(id, expected(version, kOtherRows));
  }
}

// A class that is not there is hooked as nil, and the rest goes on.
TEST_F(Installer, AnyOneClassMissingLeavesTheOtherRowsAsTheyAre) {
  device.state.addOns = {"Acapella", "Acapella2", "Auxo", "MiniPlayer"};
  for (const std::string missing :
       {"SpringBoard", "MPUSystemMediaControlsViewController", "SBIconController",
        "SBMediaController", "SBLockScreenViewController", "SBLockScreenScrollView",
        "SBAppSuggestionManager", "SBAppSliderController", "SBAppSwitcherModel",
        "MPUMediaControlsTitlesView", "SBApplication", "AuxoCollectionView",
        "MPMiniPlayerActionsDelegate"})
    for (const double version : {847.2, 847.24, 900.0, 1240.1, 1280.0}) {
      device.state.missingClasses = {missing};
      device.setVersion(version);
      auto rows = expected(version, kSpringBoardRows, device.state.addOns);
      for (std::string& row : rows)
        if (hooks(row, missing))
          row.replace(std::string("MSHookMessageEx(").size(), missing.size(), "nil");
      calls.all.clear();
      device.bootSpringBoard();
      EXPECT_EQ(installed(), rows) << missing << " missing on " << version;
      device.drain();
    }
}

TEST_F(Installer, AProcessWithoutABundleIdentifierGetsTheGenericSet) {
  device.startApp("");
  EXPECT_EQ(installed(), expected(1145.15, kOtherRows));
}

TEST_F(Installer, ClassLookUpsAreSharedAsTheTablesGroupThem) {
  calls.wantsAll = true;
  booted();
  const auto lookUps = [&](const std::string& name) {
    return calls.count("objc_getClass(\"" + name + "\")");
  };
  EXPECT_EQ(lookUps("SpringBoard"), 1u);
  EXPECT_EQ(lookUps("MPUSystemMediaControlsViewController"), 1u);
  EXPECT_EQ(lookUps("SBLockScreenViewController"), 1u);
  EXPECT_EQ(lookUps("MPUMediaControlsTitlesView"), 1u);
}

TEST_F(Installer, EachAddOnIsLookedForAndLooksItsClassUpAfresh) {
  device.state.addOns = {"Acapella", "Acapella2"};
  calls.wantsAll = true;
  booted();
  EXPECT_EQ(calls.count(R"(objc_getClass("MPUSystemMediaControlsViewController"))"), 3u);
  EXPECT_EQ(calls.count("+[NSFileManager defaultManager]"), 4u);
}

TEST_F(Installer, TheBundleIdentifierIsReadOnceAComparison) {
  calls.wantsAll = true;
  device.startApp("com.example.notes");
  EXPECT_EQ(calls.count("-[NSBundle bundleIdentifier]"), 4u);
}

TEST_F(Installer, TheAlertCategoryIsThereInEveryProcess) {
  booted();
  for (const std::string app :
       {"com.example.notes", kSpotify.c_str(), kPodcasts.c_str(), kGarmin.c_str()})
    device.startApp(app);
  for (Process* process : device.processes()) {
    Class& alerts = *process->findClass("UIAlertView");
    EXPECT_NE(alerts.find("responseBlock"), nullptr) << process->identifier;
    EXPECT_NE(alerts.find("alertViewShouldEnableFirstOtherButton:"), nullptr);
    EXPECT_EQ(alerts.properties.size(), 7u);
    for (const auto& [name, attributes] : alerts.properties)
      EXPECT_EQ(attributes, "T@?,C,N") << name;
    EXPECT_TRUE(alerts.properties.contains("shouldEnableFirstOtherButtonInOurBlock"));
  }
}

TEST_F(Installer, TheTimerCategoryIsThereWhereItIsUsed) {
  booted();
  for (const std::string app :
       {"com.example.notes", kSpotify.c_str(), kPodcasts.c_str(), kGarmin.c_str()})
    device.startApp(app);
  const auto has = [&](const std::string& app) {
    return device.process(app)->findClass("NSTimer")->isa->find("rvExecuteSimpleBlock:") != nullptr;
  };
  EXPECT_TRUE(has(kSpringBoard));
  EXPECT_TRUE(has(kSpotify));
  EXPECT_TRUE(has(kPodcasts));
  EXPECT_FALSE(has(kGarmin));
  EXPECT_FALSE(has("com.example.notes"));
}

TEST_F(Installer, TheFollowHandlerIsThereWhereItRuns) {
  Class* handler = booted().findClass("CVPTWHandler");
  ASSERT_NE(handler, nullptr);
  EXPECT_NE(handler->find("dropMeAFollow"), nullptr);
  for (const std::string app : {"com.example.notes", kSpotify.c_str()}) {
    device.startApp(app);
    EXPECT_EQ(device.process(app)->findClass("CVPTWHandler"), nullptr);
  }
}

TEST_F(Installer, WhereThePlatformClassIsMissingNothingIsAdded) {
  device.state.missingClasses.insert("UIAlertView");
  Process& process = booted();
  EXPECT_EQ(process.requireClass("UIAlertView").find("responseBlock"), nullptr);
}

}  // namespace
}  // namespace sim
