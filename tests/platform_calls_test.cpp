// What the library asks of the platform, how often and in which order, where no effect tells.
#include <algorithm>

#include "sim/apps/apps.hpp"
#include "sim/platform/device_actions.hpp"
#include "sim/scenario/settings_file.hpp"
#include "tests/device_fixture.hpp"

namespace sim {
namespace {

class PlatformCalls : public DeviceTest {
 protected:
  PlatformCalls() { device.state.apps.push_back({kSpotify, "Spotify"}); }
  void TearDown() override { expectNoCrash(); }

  // What is done is told call by call.
  void listen() {
    calls.all.clear();
    calls.wantsAll = true;
  }
  std::size_t at(const std::string& start) const {
    const auto found = std::ranges::find_if(
        calls.all, [&](const std::string& call) { return call.starts_with(start); });
    return static_cast<std::size_t>(found - calls.all.begin());
  }
  std::size_t last(const std::string& start) const {
    const auto found =
        std::find_if(calls.all.rbegin(), calls.all.rend(),
                     [&](const std::string& call) { return call.starts_with(start); });
    return static_cast<std::size_t>(calls.all.rend() - found) - 1;
  }
  std::size_t starting(const std::string& start) const {
    return static_cast<std::size_t>(std::ranges::count_if(
        calls.all, [&](const std::string& call) { return call.starts_with(start); }));
  }
  void set(const std::string& key, const scenario::SettingValue& value) {
    scenario::setSetting(device, key, value);
  }
  // Code of the library behind a hooked method.
  static Address hookOf(Process& process, const std::string& cls, const std::string& selector) {
    return process.findClass(cls)->find(selector)->implementation.library;
  }
  void callHook(Process& process, const std::string& cls, const std::string& selector,
                const Value& argument) {
    Object& self = process.sharedInstance(*process.findClass(cls));
    device.callback(process, [&] {
      process.library().call(hookOf(process, cls, selector), Kind::Void,
                             {Value::object(self.address),
                              Value::of(Kind::Selector, device.selector(selector)), argument});
    });
  }
};

constexpr std::uint64_t kBeyond32Bits = std::uint64_t{1} << 32;

TEST_F(PlatformCalls, TheAudioSystemsClassIsLookedUpOnce) {
  booted();
  listen();
  headphones(device, true);
  headphones(device, true);
  EXPECT_EQ(calls.count(R"(objc_getClass("AVSystemController"))"), 1u);
}

TEST_F(PlatformCalls, TheJackIsAskedThenTheCallAlsoWhenUnplugged) {
  booted();
  listen();
  headphones(device, false);
  EXPECT_LT(at("-[AVSystemController attributeForKey:"), at("-[TUCallCenter inCall]"));
  EXPECT_LT(at("-[TUCallCenter inCall]"), calls.all.size());
}

TEST_F(PlatformCalls, TheSwitchIsAskedBeforeAppListIsWalked) {
  set("I9gqmWG8wXu6", true);
  set("2I8UQMOAwU5nnNZt", kSpotify);
  booted();
  listen();
  headphones(device, true);
  EXPECT_TRUE(calls.has(R"(-[NSMutableDictionary objectForKey:"iea9AQXrEmhSZ4u"])"));
  EXPECT_EQ(starting("+[ALApplicationList sharedApplicationList]"), 0u);
}

TEST_F(PlatformCalls, TheIconsSceneIsFoundByBundleIdentifierOnEveryVersion) {
  set("iea9AQXrEmhSZ4u", true);
  set("2I8UQMOAwU5nnNZt", kSpotify);
  device.state.app(kSpotify)->running = true;
  booted();
  listen();
  tapIcon(device, kSpotify);
  // The launch that follows looks it up the version's own way.
  EXPECT_EQ(starting("-[SBApplicationController applicationWithBundleIdentifier:"), 1u);
  EXPECT_EQ(starting("-[SBApplicationController applicationWithDisplayIdentifier:"), 2u);
}

TEST_F(PlatformCalls, ACardIsNotAskedWhoseItIsWithoutAReplacement) {
  booted();
  listen();
  quitCard(device, kSpotify);
  EXPECT_EQ(starting("-[SBDisplayItem displayIdentifier]"), 0u);
  set("RjNkaiHs98230Xx", std::string());
  device.postDarwin("bfaK8ayWXeXMQum");
  device.drain();
  quitCard(device, kSpotify);
  EXPECT_EQ(starting("-[SBDisplayItem displayIdentifier]"), 0u);
}

TEST_F(PlatformCalls, ACardsIndexIsCutTo32BitsForItsIdentifierAlone) {
  device.setVersion(847.2);
  set("RjNkaiHs98230Xx", kSpotify);
  Process& process = booted();
  if (process.library().pointerSize() == 4) GTEST_SKIP() << "an index has 32 bits here";
  listen();
  device.callback(process, [&] {
    process.send(&process.sharedInstance(*process.findClass("SBAppSliderController")),
                 "_quitAppAtIndex:", {Value::of(Kind::ULong, kBeyond32Bits + 1)});
  });
  EXPECT_TRUE(calls.has("-[SBAppSliderController _displayIDAtIndex:1]"));
  EXPECT_EQ(calls.count("-[SBAppSliderController _quitAppAtIndex:4294967297]"), 2u);
}

TEST_F(PlatformCalls, ATitleViewsStyleIsPassedOnInAllItsBits) {
  Process& process = booted();
  if (process.library().pointerSize() == 4) GTEST_SKIP() << "a style has 32 bits here";
  listen();
  device.callback(process, [&] {
    const auto view = process.allocateInstance(*process.findClass("MPUMediaControlsTitlesView"));
    process.send(view.get(),
                 "initWithMediaControlsStyle:", {Value::of(Kind::Long, kBeyond32Bits + 3)});
  });
  EXPECT_EQ(calls.count("-[MPUMediaControlsTitlesView initWithMediaControlsStyle:4294967299]"), 2u);
}

TEST_F(PlatformCalls, TheWatchsNumberIsItsLow32Bits) {
  device.state.apps.push_back({kGarmin, "Garmin"});
  device.startApp(kGarmin);
  Process& process = *device.process(kGarmin);
  if (process.library().pointerSize() == 4) GTEST_SKIP() << "a number has 32 bits here";
  listen();
  callHook(process, "GCMMusicController",
           "didReceiveCommand:", Value::of(Kind::ULong, kBeyond32Bits + 2));
  EXPECT_TRUE(calls.has("MRMediaRemoteSendCommand(5, nil)"));
}

TEST_F(PlatformCalls, AnEmptyDictionaryThatIsReplacedIsLeftToThePool) {
  scenario::writeSettings(device, "<plist><dict/></plist>");
  calls.wantsAll = true;
  booted();
  EXPECT_TRUE(calls.has("objc_autorelease(<NSMutableDictionary>)"));
}

TEST_F(PlatformCalls, WhatWasReadIsReleasedBeforeItIsReadAgain) {
  booted();
  listen();
  device.postDarwin("bfaK8ayWXeXMQum");
  device.drain();
  EXPECT_LT(at("objc_release(<NSMutableDictionary>)"),
            at("-[NSMutableDictionary initWithContentsOfFile:"));
}

// ---- SpringBoard's start

TEST_F(PlatformCalls, TheAlertCategoryIsThereBeforeAnythingIsHooked) {
  calls.wantsAll = true;
  booted();
  EXPECT_LT(at("class_addMethod(+UIAlertView"), at("CFNotificationCenterAddObserver("));
  EXPECT_LT(at("class_addMethod(+UIAlertView"), at("MSHookMessageEx("));
}

TEST_F(PlatformCalls, FrameworksAreLoadedLazily) {
  calls.wantsAll = true;
  booted();
  unlock(device);
  EXPECT_GE(starting("dlopen("), 2u);
  for (const std::string& call : calls.all)
    EXPECT_TRUE(!call.starts_with("dlopen(") || call.ends_with(", 1)")) << call;
}

TEST_F(PlatformCalls, TheRegistryOfTitleViewsIsUnlimitedAndMadeBeforeSpringBoardIs) {
  calls.wantsAll = true;
  booted();
  EXPECT_EQ(calls.count("CFArrayCreateMutable(nil, 0, nil)"), 1u);
  EXPECT_LT(at("CFArrayCreateMutable("), last("-[SpringBoard init]"));
}

TEST_F(PlatformCalls, EachInitOfSpringBoardMakesARegistry) {
  Process& process = booted();
  listen();
  device.callback(process, [&] {
    process.send(&process.sharedInstance(*process.findClass("SpringBoard")), "init");
  });
  EXPECT_EQ(starting("CFArrayCreateMutable("), 1u);
}

TEST_F(PlatformCalls, NothingIsCapturedIfTheVersionMovedWhileSpringBoardStarted) {
  device.during("applicationDidFinishLaunching:", [&] { device.setVersion(1348.22); });
  calls.wantsAll = true;
  booted();
  EXPECT_EQ(starting("+[SBMediaController sharedInstance]"), 0u);
}

TEST_F(PlatformCalls, SpringBoardsControllersAreCapturedInTheirOrderBehindItsOwnWork) {
  calls.wantsAll = true;
  booted();
  std::vector<std::string> captured;
  for (auto i = last("-[SpringBoard applicationDidFinishLaunching:"); i < calls.all.size(); ++i)
    if (calls.all[i].starts_with("+[SB")) captured.push_back(calls.all[i]);
  EXPECT_EQ(captured, (std::vector<std::string>{
                          "+[SBMediaController sharedInstance]",
                          "+[SBBacklightController sharedInstance]",
                          "+[SBApplicationController sharedInstance]",
                          "+[SBLockScreenManager sharedInstance]",
                          "+[SBControlCenterController sharedInstance]",
                      }));
}

TEST_F(PlatformCalls, TheNetworkIsAskedAboutForAWelcomeNotForAnUpdate) {
  for (const bool updated : {false, true}) {
    scenario::writeSettings(device, "<plist><dict/></plist>");
    if (updated) set("hasShownWAL", true);
    booted();
    listen();
    unlock(device);
    EXPECT_EQ(starting("SCNetworkReachabilityGetFlags("), updated ? 0u : 1u);
  }
}

TEST_F(PlatformCalls, TheMarkersSayYes) {
  booted();
  listen();
  unlock(device);
  pressButton(device, 1);
  EXPECT_EQ(calls.count("+[NSNumber numberWithBool:YES]"), 2u);
  EXPECT_EQ(calls.count("+[NSNumber numberWithBool:NO]"), 0u);
}

TEST_F(PlatformCalls, TheUpdatesAlertAsksForItsCancelButtonWhenItIsPressed) {
  set("hasShownWAL", true);
  booted();
  unlock(device);
  listen();
  pressButton(device, 0);
  EXPECT_EQ(calls.count("-[UIAlertView cancelButtonIndex]"), 1u);
}

TEST_F(PlatformCalls, OnlyTheHintsOwnButtonOpensTheSettings) {
  device.state.networkFlags.reset();
  Process& process = booted();
  unlock(device);
  device.callback(process, [&] {
    process.send(topAlert(process), "addButtonWithTitle:", {text(process, "Go elsewhere")});
  });
  listen();
  pressButton(device, 2);
  EXPECT_EQ(calls.count("-[UIAlertView buttonTitleAtIndex:2]"), 1u);
  EXPECT_EQ(starting("-[SpringBoard openURL:"), 0u);
}

// ---- Launches

TEST_F(PlatformCalls, AppListIsNotAskedAboutAnEmptyIdentifier) {
  set("iea9AQXrEmhSZ4u", true);
  set("2I8UQMOAwU5nnNZt", std::string());
  booted();
  listen();
  tapTransport(device, 3);
  EXPECT_EQ(starting("+[ALApplicationList "), 0u);
}

TEST_F(PlatformCalls, AScenesOwnSettingsAreCopiedBeforeTheyAreChanged) {
  set("iea9AQXrEmhSZ4u", true);
  set("2I8UQMOAwU5nnNZt", kSpotify);
  device.state.app(kSpotify)->running = true;
  booted();
  listen();
  tapTransport(device, 3);
  EXPECT_LT(at("-[FBSMutableSceneSettings mutableCopy]"),
            at("-[FBSMutableSceneSettings setBackgrounded:YES]"));
}

// ---- Collections

TEST_F(PlatformCalls, CollectionsAreWalkedSixteenElementsAtATime) {
  set("iea9AQXrEmhSZ4u", true);
  booted();
  for (int i = 0; i < 17; ++i) newTitleView(device, std::to_string(i));
  listen();
  device.postDarwin("bfaK8ayWXeXMQum");
  device.drain();
  EXPECT_EQ(starting("-[MPUMediaControlsTitlesView updateNowPlayingAppDisplayName:"), 2u * 17);
  EXPECT_EQ(starting("-[NSMutableArray countByEnumeratingWithState:"), 3u);  // 16, 1, none
}

TEST_F(PlatformCalls, ACollectionThatChangesWhileItIsWalkedIsReported) {
  set("iea9AQXrEmhSZ4u", true);
  booted();
  newTitleView(device, "view");
  newTitleView(device, "another");
  listen();
  device.during("updateNowPlayingAppDisplayName:", [&] { newTitleView(device, "newcomer"); });
  device.postDarwin("bfaK8ayWXeXMQum");
  device.drain();
  EXPECT_EQ(starting("objc_enumerationMutation("), 1u);
  calls.all.clear();
}

// ---- Icons

// The icon gives its identifier away and keeps none.
TEST_F(PlatformCalls, AnIconsIdentifierIsHeldWhileItsAppIsLookedUp) {
  set("iea9AQXrEmhSZ4u", true);
  set("2I8UQMOAwU5nnNZt", kSpotify);
  device.state.app(kSpotify)->running = true;
  Process& process = booted();
  Ref<Object> identifier;
  auto code = std::make_shared<NativeCode>();
  code->name = "applicationBundleID";
  code->signature = {Kind::Object, {}, false};
  code->run = [&](Invocation&) {
    identifier = makeString(process, kSpotify);
    return Value::object(identifier->address);
  };
  process.findClass("SBApplicationIcon")->methods[code->name] = {
      code->name, code->signature, {code, 0}};
  device.during("isRunning", [&] { identifier = {}; });
  listen();
  tapIcon(device, kSpotify);
  EXPECT_EQ(starting("-[SBApplicationController applicationWithBundleIdentifier:"), 1u);
}

// ---- Players

TEST_F(PlatformCalls, ThePollTimerIsInvalidatedThenReleased) {
  set("LyyY0YZw4enaXR6S", true);
  booted();
  device.startApp(kSpotify);
  listen();
  newController(device);
  EXPECT_LT(at("-[NSTimer invalidate]"), at("objc_release(<NSTimer>)"));
  EXPECT_LT(at("objc_release(<NSTimer>)"), calls.all.size());
}

TEST_F(PlatformCalls, TheStateSaveTimerIsRetained) {
  calls.wantsAll = true;
  device.startApp(kSpotify);
  EXPECT_EQ(calls.count("objc_retain(<NSTimer>)"), 1u);
}

TEST_F(PlatformCalls, SpotifysControllerIsKeptByItsTimer) {
  set("LyyY0YZw4enaXR6S", true);
  booted();
  device.startApp(kSpotify);
  device.drain();
  device.process(kSpotify)->kept.clear();
  calls.all.clear();
  device.advance(360'000);
  EXPECT_TRUE(calls.has("-[SPTPlayer setPaused:NO]"));
}

TEST_F(PlatformCalls, ASecondLaunchOfPodcastsReplacesTheFirstOnesTimer) {
  set("LyyY0YZw4enaXR6S", true);
  for (const double version : {1240.09, 1240.1}) {
    device.setVersion(version);
    device.startApp(kPodcasts);
    calls.all.clear();
    startPodcasts(*device.process(kPodcasts));
    EXPECT_LT(at("-[NSTimer invalidate]"),
              at("+[NSTimer scheduledTimerWithTimeInterval:0.36 repeats:YES]"));
    EXPECT_EQ(device.process(kPodcasts)->timers.size(), 1u);
    device.endProcess(*device.process(kPodcasts));
  }
}

}  // namespace
}  // namespace sim
