// The handler of the welcome and of its account choice, told of buttons that no user can press.
#include "sim/platform/device_actions.hpp"
#include "tests/device_fixture.hpp"

namespace sim {
namespace {

TEST(FollowHandler, TheOnlyAccountFollowsAtOnceOnTheThreadThatAnswered) {
  Calls calls;
  const auto loader = testedLibrary();
  Device device(calls, *loader);
  device.state.accounts = {"only"};
  device.bootSpringBoard();
  unlock(device);
  std::optional<Thread> asked;
  device.during("performRequestWithHandler:", [&] { asked = device.springBoard()->thread; });
  pressButton(device, 1);
  device.drain();
  EXPECT_EQ(asked, Thread::Other);
}

// An alert that the system takes away may name a button that it does not have.
TEST(FollowHandler, AButtonBeyondTheAccountsFollowsNobodyButIsThankedFor) {
  for (const long button : {-2l, -1l, 3l, 4l}) {
    Calls calls;
    const auto loader = testedLibrary();
    Device device(calls, *loader);
    device.state.accounts = {"first", "second"};
    device.bootSpringBoard();
    unlock(device);
    pressButton(device, 1);
    device.drain();
    Process& process = *device.springBoard();
    UIAlertView* choice = topAlert(process);
    ASSERT_NE(choice, nullptr);
    ASSERT_EQ(choice->buttons(), 3u);
    calls.all.clear();
    ASSERT_TRUE(device.callback(
        process,
        [&] {
          process.send(choice->delegate(), "alertView:clickedButtonAtIndex:",
                       {Value::object(choice->address), Value::integer(Kind::Long, button)});
        }))
        << "button " << button << ": " << (calls.all.empty() ? "" : calls.all.back());
    const auto starting = [&](const std::string& start) {
      return std::ranges::count_if(
          calls.all, [&](const std::string& call) { return call.starts_with(start); });
    };
    EXPECT_EQ(starting("-[SLRequest "), 0) << "button " << button;
    EXPECT_EQ(starting(R"(-[UIAlertView show] "All done!")"), 1) << "button " << button;
  }
}

}  // namespace
}  // namespace sim
