// What happens when the platform answers nothing where it could, where no scenario can bring it
// about.
#include "sim/inject/injector.hpp"
#include "sim/platform/device_actions.hpp"
#include "sim/scenario/settings_file.hpp"
#include "tests/device_fixture.hpp"

namespace sim {
namespace {

using inject::FaultKind;
using inject::InjectedFault;
using inject::Injector;

class InjectedFaults : public DeviceTest {
 protected:
  ~InjectedFaults() override { device.injection = nullptr; }

  void fail(const std::string& call) {
    injector_.emplace(std::vector<InjectedFault>{{FaultKind::Nothing, call, 0}});
    device.injection = &*injector_;
  }
  void answerAnother(const std::string& call) {
    injector_.emplace(std::vector<InjectedFault>{{FaultKind::Another, call, 0}});
    device.injection = &*injector_;
  }
  // Whether SpringBoard still is what it was.
  bool works() {
    device.drain();
    expectNoCrash();
    EXPECT_TRUE(injector_->struck()) << "what was to fail was never called";
    Process* board = device.springBoard();
    if (!board) return false;
    for (const auto& leak : board->leaks()) ADD_FAILURE() << "leak of " << leak;
    return remote(device, 1).value_or(false);
  }
  // The first unlock, answered with that button.
  void greetedAndPressed(long button) {
    booted();
    unlock(device);
    pressButton(device, button);
    device.drain();
  }

 private:
  std::optional<Injector> injector_;
};

TEST_F(InjectedFaults, WithoutATwitterAccountTypeNoAccessIsAskedFor) {
  fail(R"(-[ACAccountStore accountTypeWithAccountTypeIdentifier:"com.apple.twitter"])");
  greetedAndPressed(1);
  EXPECT_EQ(calls.count("-[ACAccountStore requestAccessToAccountsWithType:withCompletionHandler:]"),
            0u);
  EXPECT_TRUE(works());
}

TEST_F(InjectedFaults, WithoutTheAccountsFrameworkNoAccessIsAskedFor) {
  fail(R"(dlsym(<pointer>, "ACAccountTypeIdentifierTwitter"))");
  greetedAndPressed(1);
  EXPECT_EQ(calls.count("-[ACAccountStore requestAccessToAccountsWithType:withCompletionHandler:]"),
            0u);
  EXPECT_TRUE(works());
}

TEST_F(InjectedFaults, WithoutTheSocialFrameworkNobodyIsFollowedButThanked) {
  device.state.accounts = {"first"};
  fail(R"(dlsym(<pointer>, "SLServiceTypeTwitter"))");
  greetedAndPressed(1);
  EXPECT_TRUE(std::ranges::none_of(
      calls.all, [](const auto& call) { return call.starts_with("-[SLRequest perform"); }));
  EXPECT_TRUE(std::ranges::any_of(calls.all, [](const auto& call) {
    return call.starts_with("-[UIAlertView show] \"Done!\"");
  }));
  EXPECT_TRUE(works());
}

TEST_F(InjectedFaults, ASettingsPaneWhoseNameCannotBeEscapedIsNotOpened) {
  device.state.networkFlags.reset();
  fail("-[NSString stringByAddingPercentEscapesUsingEncoding:4]");
  greetedAndPressed(1);
  EXPECT_TRUE(std::ranges::none_of(
      calls.all, [](const auto& call) { return call.find("openURL:") != std::string::npos; }));
  EXPECT_TRUE(works());
}

TEST_F(InjectedFaults, ATitleViewThatInitialisesToNothingLeavesNoTrace) {
  fail("-[MPUMediaControlsTitlesView initWithMediaControlsStyle:0]");
  scenario::setSetting(device, "iea9AQXrEmhSZ4u", true);
  booted();
  newTitleView(device, "view");
  device.postDarwin("bfaK8ayWXeXMQum");
  device.drain();
  EXPECT_EQ(calls.count(R"(-[MPUMediaControlsTitlesView updateNowPlayingAppDisplayName:""])"), 0u);
  EXPECT_TRUE(works());
}

TEST_F(InjectedFaults, ATitleViewThatInitialisesToAnotherIsNotTakenForIt) {
  answerAnother("-[MPUMediaControlsTitlesView initWithMediaControlsStyle:0]");
  scenario::setSetting(device, "iea9AQXrEmhSZ4u", true);
  booted();
  newTitleView(device, "view");
  device.postDarwin("bfaK8ayWXeXMQum");
  device.drain();
  EXPECT_TRUE(std::ranges::none_of(calls.all, [](const auto& call) {
    return call.starts_with("-[MPUMediaControlsTitlesView updateNowPlayingAppDisplayName:");
  }));
  freeTitleView(device, "view");
  EXPECT_TRUE(works());
}

TEST_F(InjectedFaults, AFrameworkThatCannotBeOpenedIsAskedForNothing) {
  device.state.accounts = {"first"};
  device.state.frameworks[Framework::Social] = Presence::Loaded;
  calls.wantsAll = true;
  fail(R"(dlopen("/System/Library/Frameworks/Social.framework/Social", 1))");
  greetedAndPressed(1);
  EXPECT_TRUE(std::ranges::none_of(calls.all, [](const auto& call) {
    return call.starts_with("dlsym(") && call.find("SLServiceTypeTwitter") != std::string::npos;
  }));
  EXPECT_TRUE(works());
}

TEST_F(InjectedFaults, WithoutAWayToAskThereIsNoNetwork) {
  fail("SCNetworkReachabilityCreateWithAddress(nil, <pointer>)");
  booted();
  unlock(device);
  EXPECT_TRUE(std::ranges::any_of(calls.all, [](const auto& call) {
    return call.find(R"(["Not right now", "Go to Settings"])") != std::string::npos;
  }));
  EXPECT_TRUE(works());
}

TEST_F(InjectedFaults, AHandlersClassThatAnotherCopyHasIsLeftToIt) {
  fail(R"(objc_allocateClassPair(NSObject, "CVPTWHandler", 0))");
  booted();
  EXPECT_TRUE(works());
}

TEST_F(InjectedFaults, ASpringBoardThatInitialisesToAnotherIsThatOther) {
  answerAnother("-[SpringBoard init]");
  booted();
  EXPECT_TRUE(works());
}

TEST_F(InjectedFaults, ADragThatIsNotToCancelTouchesDoesNot) {
  fail("-[SBLockScreenScrollView touchesShouldCancelInContentView:<UIView>]");
  booted();
  EXPECT_EQ(dragLockScreen(device), false);
  EXPECT_TRUE(works());
}

}  // namespace
}  // namespace sim
