// The alert category, as an app meets it through the methods added to UIAlertView.
#include "sim/core/bind.hpp"
#include "sim/uikit/alert_view.hpp"
#include "tests/device_fixture.hpp"

namespace sim {
namespace {

const char* const kShow =
    "showWithTitleCVP:message:cancelButtonTitle:otherButtonTitles:responseBlock:";

class BlockAlert : public DeviceTest {
 protected:
  std::vector<std::string> heard;

  Value noting(Process& process, const std::string& what) {
    return makeBlock(process, {Kind::Void, {Kind::Object, Kind::Long}, false},
                     [this, what](Invocation& call) {
                       heard.push_back(what + " " + std::to_string(call.arguments[2].asInteger()));
                       return Value::none();
                     });
  }
  // A delegate that answers `selector` and notes it.
  Ref<Object> delegate(Process& process, const std::string& selector, Signature signature) {
    Class& made = process.createClass("TestDelegate", process.findClass("NSObject"));
    auto code = std::make_shared<NativeCode>();
    code->name = selector;
    code->signature = signature;
    code->run = [this, selector](Invocation& call) {
      heard.push_back("delegate " + selector);
      return call.arguments.size() == 1 ? Value::boolean(false) : Value::none();
    };
    made.methods[selector] = {selector, signature, {code, 0}};
    return process.allocateInstance(made);
  }
  UIAlertView* shown(Process& process, std::vector<Value> arguments) {
    const Value alert = process.send(cls(process, "UIAlertView"), kShow, std::move(arguments));
    return dynamic_cast<UIAlertView*>(process.object(alert.bits));
  }
  Value array(Process& process, const std::vector<std::string>& titles) {
    const Ref<Object> made = process.allocateInstance(process.requireClass("NSMutableArray"));
    process.autorelease(made);
    for (const auto& title : titles) process.send(made.get(), "addObject:", {text(process, title)});
    return Value::object(made->address);
  }
};

TEST_F(BlockAlert, WithoutOtherTitlesItHasAtMostTheCancelButton) {
  Process& process = booted();
  device.callback(process, [&] {
    const auto* nilTitles = shown(process, {text(process, "T"), text(process, "M"),
                                            text(process, "Cancel"), Value::nil(), Value::nil()});
    EXPECT_EQ(nilTitles->contents(), R"("T" "M" ["Cancel"] tag 0)");
    const auto* empty = shown(process, {text(process, "T"), text(process, "M"), Value::nil(),
                                        array(process, {}), Value::nil()});
    EXPECT_EQ(empty->contents(), R"("T" "M" [] tag 0)");
  });
}

TEST_F(BlockAlert, OneOtherTitleIsGivenToTheInitialiser) {
  Process& process = booted();
  calls.wantsAll = true;
  device.callback(process, [&] {
    const auto* alert = shown(process, {text(process, "T"), text(process, "M"), Value::nil(),
                                        array(process, {"Only"}), Value::nil()});
    EXPECT_EQ(alert->contents(), R"("T" "M" ["Only"] tag 0)");
  });
  for (const auto& call : calls.all)
    EXPECT_EQ(call.find("addButtonWithTitle:"), std::string::npos) << call;
}

TEST_F(BlockAlert, FurtherTitlesAreAddedInOrder) {
  Process& process = booted();
  device.callback(process, [&] {
    const auto* alert = shown(process, {text(process, "T"), text(process, "M"), text(process, "C"),
                                        array(process, {"one", "two", "three"}), Value::nil()});
    EXPECT_EQ(alert->contents(), R"("T" "M" ["C", "one", "two", "three"] tag 0)");
  });
}

TEST_F(BlockAlert, WithoutAResponseItHasNoDelegateAndAPressCallsNothing) {
  Process& process = booted();
  device.callback(process, [&] {
    auto* alert = shown(process, {text(process, "T"), text(process, "M"), text(process, "C"),
                                  Value::nil(), Value::nil()});
    EXPECT_EQ(alert->delegate(), nullptr);
    alert->press(0);
  });
  EXPECT_TRUE(heard.empty());
}

TEST_F(BlockAlert, TheResponseHearsWhichButtonWasPressed) {
  Process& process = booted();
  device.callback(process, [&] {
    auto* alert = shown(process, {text(process, "T"), text(process, "M"), text(process, "C"),
                                  array(process, {"one"}), noting(process, "response")});
    EXPECT_EQ(alert->delegate(), alert);
    alert->press(1);
  });
  EXPECT_EQ(heard, std::vector<std::string>{"response 1"});
}

TEST_F(BlockAlert, TheThreeButtonCallbacksComeInThePlatformsOrder) {
  Process& process = booted();
  device.callback(process, [&] {
    auto* alert = shown(process, {text(process, "T"), text(process, "M"), text(process, "C"),
                                  Value::nil(), noting(process, "clicked")});
    process.send(alert, "setWillDismissOurBlock:", {noting(process, "will dismiss")});
    process.send(alert, "setDidDismissOurBlock:", {noting(process, "did dismiss")});
    alert->press(0);
  });
  EXPECT_EQ(heard, (std::vector<std::string>{"clicked 0", "will dismiss 0", "did dismiss 0"}));
}

TEST_F(BlockAlert, AnEarlierDelegateKeepsHearingAfterTheCallback) {
  Process& process = booted();
  device.callback(process, [&] {
    const auto earlier = delegate(process, "alertView:clickedButtonAtIndex:",
                                  {Kind::Void, {Kind::Object, Kind::Long}, false});
    auto* alert = shown(process, {text(process, "T"), text(process, "M"), text(process, "C"),
                                  Value::nil(), Value::nil()});
    alert->setDelegate(earlier.get());
    process.send(alert, "setResponseBlock:", {noting(process, "callback")});
    alert->press(0);
  });
  EXPECT_EQ(heard,
            (std::vector<std::string>{"callback 0", "delegate alertView:clickedButtonAtIndex:"}));
}

TEST_F(BlockAlert, AnEarlierDelegateIsNotHeldAlive) {
  Process& process = booted();
  device.callback(process, [&] {
    auto earlier = delegate(process, "alertViewCancel:", {Kind::Void, {Kind::Object}, false});
    auto* alert = shown(process, {text(process, "T"), text(process, "M"), text(process, "C"),
                                  Value::nil(), Value::nil()});
    alert->setDelegate(earlier.get());
    process.send(alert, "setResponseBlock:", {noting(process, "callback")});
    const Address address = earlier->address;
    earlier = {};
    EXPECT_THROW(process.object(address), Fault);
  });
}

TEST_F(BlockAlert, TheFirstOtherButtonIsEnabledUnlessSomebodySaysOtherwise) {
  Process& process = booted();
  device.callback(process, [&] {
    auto* alert = shown(process, {text(process, "T"), text(process, "M"), text(process, "C"),
                                  Value::nil(), noting(process, "callback")});
    const auto ask = [&] {
      return process
          .send(alert, "alertViewShouldEnableFirstOtherButton:", {Value::object(alert->address)})
          .asBool();
    };
    EXPECT_TRUE(ask());
    process.send(alert, "setShouldEnableFirstOtherButtonInOurBlock:",
                 {makeBlock(process, {Kind::Bool, {Kind::Object}, false},
                            [](Invocation&) { return Value::boolean(false); })});
    EXPECT_FALSE(ask());
  });
}

TEST_F(BlockAlert, ThePreviousDelegateDecidesWhereThereIsNoCallback) {
  Process& process = booted();
  device.callback(process, [&] {
    const auto earlier = delegate(
        process, "alertViewShouldEnableFirstOtherButton:", {Kind::Bool, {Kind::Object}, false});
    auto* alert = shown(process, {text(process, "T"), text(process, "M"), text(process, "C"),
                                  Value::nil(), Value::nil()});
    alert->setDelegate(earlier.get());
    process.send(alert, "setResponseBlock:", {noting(process, "callback")});
    EXPECT_FALSE(
        process
            .send(alert, "alertViewShouldEnableFirstOtherButton:", {Value::object(alert->address)})
            .asBool());
  });
}

// Callbacks live as long as their alert, and no longer.
TEST_F(BlockAlert, CallbacksAreCopiedAndGoWithTheAlert) {
  Process& process = booted();
  Address copy = 0;
  device.callback(process, [&] {
    const Value block = noting(process, "callback");
    process.library().writePointer(block.bits, process.library().variable("_NSConcreteStackBlock"));
    auto* alert = shown(
        process, {text(process, "T"), text(process, "M"), text(process, "C"), Value::nil(), block});
    copy = process.send(alert, "responseBlock").bits;
    EXPECT_NE(copy, block.bits);
    alert->press(0);
  });
  EXPECT_THROW(process.object(copy), Fault);
}

}  // namespace
}  // namespace sim
