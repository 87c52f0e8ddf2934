// What classes answer: everything, what their version answers, or one method less.
#include "sim/platform/device_actions.hpp"
#include "tests/device_fixture.hpp"

namespace sim {
namespace {

class Selectors : public DeviceTest {
 protected:
  Process& bootOn(double version) {
    device.state.selectorsOfVersion = true;
    device.setVersion(version);
    return booted();
  }
  static bool answers(Process& process, const std::string& cls, const std::string& selector) {
    Class* found = process.findClass(cls);
    return found && found->find(selector);
  }
};

// The methods that not every version has, stated here once more: from a version on, below another.
struct Row {
  const char* cls;
  const char* selector;
  double from = 0;
  double below = 1e9;
};
const Row kRows[] = {
    {"MPUMediaControlsTitlesView", "updateNowPlayingAppDisplayName:", 847.24},
    {"MPUMediaControlsTitlesView", "initWithMediaControlsStyle:"},
    {"SBBacklightController", "screenIsOff", 0, 1240.1},
    {"SBBacklightController", "screenIsOn", 1240.1},
    {"SBAppSliderController", "_quitAppAtIndex:", 0, 900.0},
    {"SBAppSliderController", "_displayIDAtIndex:", 0, 900.0},
    {"SBAppSwitcherModel", "removeDisplayItem:", 900.0, 1240.1},
    {"SBAppSwitcherModel", "remove:"},
    {"SBAppSuggestionManager", "init", 900.0},
    {"SBApplication", "processDidLaunch:", 900.0},
    {"SBApplication", "mainScene", 900.0},
    {"SBApplication", "isRunning"},
    {"FBScene", "mutableSettings", 900.0},
    {"FBScene", "_applyMutableSettings:withTransitionContext:completion:", 900.0},
    {"FBSMutableSceneSettings", "setBackgrounded:", 900.0},
    {"TUCallCenter", "inCall", 0, 1240.1},
    {"TUCallCenter", "anyCallIsHostedOnCurrentDevice", 900.0},
    {"SBApplicationController", "applicationWithBundleIdentifier:", 900.0},
    {"SBApplicationController", "applicationWithDisplayIdentifier:", 0, 1240.1},
    {"SpringBoard", "launchApplicationWithIdentifier:suspended:"},
    {"SBLockScreenViewController", "setPasscodeLockVisible:animated:withUnlockSource:andOptions:"},
};

TEST_F(Selectors, AreThoseOfTheVersionOnBothSidesOfEveryThreshold) {
  for (const double version :
       {847.2, 847.239, 847.24, 899.99, 900.0, 1145.15, 1240.09, 1240.1, 1280.0}) {
    Process& process = bootOn(version);
    for (const Row& row : kRows)
      EXPECT_EQ(answers(process, row.cls, row.selector), version >= row.from && version < row.below)
          << row.cls << ' ' << row.selector << " on " << version;
  }
}

TEST_F(Selectors, AreThoseOfEveryVersionUnlessAskedFor) {
  for (const double version : {847.2, 1145.15, 1280.0}) {
    device.setVersion(version);
    Process& process = booted();
    for (const Row& row : kRows)
      EXPECT_TRUE(answers(process, row.cls, row.selector)) << row.cls << ' ' << row.selector;
  }
}

// ---- The older look-up of apps on iOS 8, which AppList makes up when it is sent

class AppLookUpOnIOS8 : public Selectors {
 protected:
  const std::string older = "applicationWithDisplayIdentifier:";
  Object& controller(Process& process) {
    return *process.object(
        process.send(cls(process, "SBApplicationController"), "sharedInstance").bits);
  }
};

TEST_F(AppLookUpOnIOS8, IsAnsweredThoughItSaysThatItIsNot) {
  Process& process = bootOn(1145.15);
  EXPECT_FALSE(process.responds(controller(process), older));
  EXPECT_NE(process.send(&controller(process), older, {text(process, kMusic)}).bits, 0u);
}

TEST_F(AppLookUpOnIOS8, EndsSpringBoardWhereAppListIsGone) {
  Process& process = bootOn(1145.15);
  removeClass(device, "ALApplicationList");
  EXPECT_FALSE(device.callback(
      process, [&] { process.send(&controller(process), older, {text(process, kMusic)}); }));
  EXPECT_TRUE(
      calls.has("crash: -[SBApplicationController applicationWithDisplayIdentifier:]: unrecognized "
                "selector"));
}

TEST_F(AppLookUpOnIOS8, IsAsEverOnIOS7) {
  device.state.missingClasses = {"ALApplicationList"};
  Process& process = bootOn(847.24);
  EXPECT_TRUE(process.responds(controller(process), older));
  EXPECT_NE(process.send(&controller(process), older, {text(process, kMusic)}).bits, 0u);
}

TEST_F(AppLookUpOnIOS8, TheLibrarySendsItWhereAppListIsAndTheNewerOneWhereNot) {
  calls.wantsAll = true;
  const auto sent = [&](const std::string& selector) {
    return std::ranges::count_if(calls.all, [&](const auto& call) {
      return call.starts_with("-[SBApplicationController " + selector);
    });
  };
  bootOn(1145.15);
  tapIcon(device, kMusic);
  EXPECT_EQ(sent(older), 1);
  calls.all.clear();
  removeClass(device, "ALApplicationList");
  tapIcon(device, kMusic);
  EXPECT_EQ(sent(older), 0);
  EXPECT_EQ(sent("applicationWithBundleIdentifier:"), 1);
  EXPECT_NE(device.springBoard(), nullptr);
}

// ---- Methods taken away one by one

TEST_F(Selectors, AMissingMethodIsNotInheritedEither) {
  device.state.missingMethods = {{"SpringBoard", "openURL:"}};
  Process& process = booted();
  EXPECT_FALSE(answers(process, "SpringBoard", "openURL:"));
  EXPECT_TRUE(answers(process, "UIApplication", "openURL:"));
  EXPECT_TRUE(answers(process, "SpringBoard", "canOpenURL:"));
}

TEST_F(Selectors, AMissingMethodIsMissingFromWhatInheritsIt) {
  device.state.missingMethods = {{"UIApplication", "openURL:"}, {"NSObject", "init"}};
  Process& process = booted();
  EXPECT_FALSE(answers(process, "SpringBoard", "openURL:"));
  EXPECT_TRUE(answers(process, "SpringBoard", "init"));  // its own
  EXPECT_FALSE(answers(process, "SBAppSwitcherModel", "init"));
}

TEST_F(Selectors, AClassMethodCanBeMissingToo) {
  device.state.missingMethods = {{"TUCallCenter", "sharedInstance"}};
  Process& process = booted();
  EXPECT_FALSE(process.responds(*cls(process, "TUCallCenter"), "sharedInstance"));
  EXPECT_TRUE(process.responds(*cls(process, "SBMediaController"), "sharedInstance"));
}

TEST_F(Selectors, AMessageThatIsNotAnsweredEndsTheProcess) {
  device.state.missingMethods = {{"SBMediaController", "hasTrack"}};
  booted();
  tapTransport(device, 3);
  EXPECT_EQ(device.springBoard(), nullptr);
  EXPECT_TRUE(calls.has("crash: -[SBMediaController hasTrack]: unrecognized selector"));
}

// What a class is given later it has: a category may add what the class itself lacks.
TEST_F(Selectors, AMissingMethodCanBeAdded) {
  device.state.missingMethods = {{"UIAlertView", "alertViewCancel:"}};
  Process& process = booted();
  EXPECT_TRUE(answers(process, "UIAlertView", "alertViewCancel:"));
}

}  // namespace
}  // namespace sim
