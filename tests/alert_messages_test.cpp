// The alert category's delegate messages, one by one: whose callback is called, who is told after
// it, and what is set on an alert before it is shown.
#include <algorithm>

#include "sim/core/bind.hpp"
#include "sim/platform/device_actions.hpp"
#include "sim/uikit/alert_view.hpp"
#include "tests/device_fixture.hpp"

namespace sim {
namespace {

struct Message {
  const char* selector;
  const char* getter;
  const char* setter;
  bool aboutButton;
};

constexpr Message kMessages[] = {
    {"willPresentAlertView:", "willPresentOurBlock", "setWillPresentOurBlock:", false},
    {"didPresentAlertView:", "didPresentOurBlock", "setDidPresentOurBlock:", false},
    {"alertViewCancel:", "cancelOurBlock", "setCancelOurBlock:", false},
    {"alertView:clickedButtonAtIndex:", "responseBlock", "setResponseBlock:", true},
    {"alertView:willDismissWithButtonIndex:", "willDismissOurBlock",
     "setWillDismissOurBlock:", true},
    {"alertView:didDismissWithButtonIndex:", "didDismissOurBlock", "setDidDismissOurBlock:", true},
};
constexpr const char* kQuestion = "alertViewShouldEnableFirstOtherButton:";
constexpr const char* kQuestionGetter = "shouldEnableFirstOtherButtonInOurBlock";
constexpr const char* kQuestionSetter = "setShouldEnableFirstOtherButtonInOurBlock:";

class AlertMessages : public DeviceTest {
 protected:
  void TearDown() override { expectNoCrash(); }

  std::vector<std::string> heard;
  UIAlertView* receiver = nullptr;
  UIAlertView* argument = nullptr;

  std::string nameOf(Address alert) const {
    if (receiver && alert == receiver->address) return "receiver";
    return argument && alert == argument->address ? "argument" : "another";
  }
  std::string note(const std::string& who, const Invocation& call, std::size_t first) const {
    std::string text = who + " of " + nameOf(call.arguments[first].bits);
    if (call.arguments.size() > first + 1)
      text += " " + std::to_string(call.arguments[first + 1].asInteger());
    return text;
  }
  Value callback(Process& process, const Message& message, const std::string& who) {
    std::vector<Kind> kinds{Kind::Object};
    if (message.aboutButton) kinds.push_back(Kind::Long);
    const std::string name = who + "'s " + message.getter;
    return makeBlock(process, {Kind::Void, kinds, false}, [this, name](Invocation& call) {
      heard.push_back(note(name, call, 1));
      return Value::none();
    });
  }
  Value answer(Process& process, const std::string& who, bool yes) {
    return makeBlock(process, {Kind::Bool, {Kind::Object}, false},
                     [this, who, yes](Invocation& call) {
                       heard.push_back(note(who + "'s " + kQuestionGetter, call, 1));
                       return Value::boolean(yes);
                     });
  }
  // A block that lives only as long as somebody has a copy of it.
  static Value onTheStack(Process& process, Signature signature, Native body) {
    const Value block = makeBlock(process, std::move(signature), std::move(body));
    process.library().writePointer(block.bits, process.library().variable("_NSConcreteStackBlock"));
    return block;
  }
  // Answers every delegate message but those in `except`, noting it.
  Object* delegate(Process& process, const std::string& who, const std::string& except = {}) {
    Class& made = process.createClass("Delegate of " + who, process.findClass("NSObject"));
    const auto add = [&](const std::string& selector, Signature signature) {
      if (selector == except) return;
      auto code = std::make_shared<NativeCode>();
      code->name = selector;
      code->signature = signature;
      code->run = [this, who, selector](Invocation& call) {
        heard.push_back(note(who + "'s delegate: " + selector, call, 0));
        return selector == kQuestion ? Value::boolean(false) : Value::none();
      };
      made.methods[selector] = {selector, signature, {code, 0}, {}};
    };
    for (const Message& message : kMessages)
      add(message.selector,
          {Kind::Void,
           message.aboutButton ? std::vector{Kind::Object, Kind::Long} : std::vector{Kind::Object},
           false});
    add(kQuestion, {Kind::Bool, {Kind::Object}, false});
    process.kept.push_back(process.allocateInstance(made));
    return process.kept.back().get();
  }
  UIAlertView* alert(Process& process) {
    process.kept.push_back(process.make<UIAlertView>("UIAlertView"));
    return static_cast<UIAlertView*>(process.kept.back().get());
  }
  Value tell(Process& process, const Message& message, long button) {
    std::vector<Value> arguments{Value::object(argument->address)};
    if (message.aboutButton) arguments.push_back(Value::integer(Kind::Long, button));
    return process.send(receiver, message.selector, arguments);
  }
  // Two alerts with previous delegates and every callback, of which one gets messages about the
  // other.
  void makeAlerts(Process& process, bool withCallbacks, const std::string& unanswered = {}) {
    receiver = alert(process);
    argument = alert(process);
    receiver->setDelegate(delegate(process, "receiver", unanswered));
    argument->setDelegate(delegate(process, "argument"));
    for (UIAlertView* one : {receiver, argument}) {
      // One callback at least, or the delegate stays what it was.
      process.send(one, kQuestionSetter, {answer(process, nameOf(one->address), true)});
      for (const Message& message : kMessages)
        if (withCallbacks || one == receiver)
          process.send(one, message.setter, {callback(process, message, nameOf(one->address))});
    }
    heard.clear();
  }
  std::size_t at(const std::string& start) const {
    const auto found = std::ranges::find_if(
        calls.all, [&](const std::string& call) { return call.starts_with(start); });
    return static_cast<std::size_t>(found - calls.all.begin());
  }
};

TEST_F(AlertMessages, TheArgumentsCallbackIsCalledThenTheReceiversDelegate) {
  Process& process = booted();
  device.callback(process, [&] {
    makeAlerts(process, true);
    for (const Message& message : kMessages) {
      heard.clear();
      tell(process, message, 3);
      const std::string of = message.aboutButton ? " of argument 3" : " of argument";
      EXPECT_EQ(heard, (std::vector<std::string>{
                           "argument's " + (message.getter + of),
                           "receiver's delegate: " + (message.selector + of),
                       }));
    }
  });
}

TEST_F(AlertMessages, WithoutACallbackTheDelegateAloneIsTold) {
  Process& process = booted();
  device.callback(process, [&] {
    makeAlerts(process, false);
    for (const Message& message : kMessages) {
      heard.clear();
      tell(process, message, 1);
      const std::string of = message.aboutButton ? " of argument 1" : " of argument";
      EXPECT_EQ(heard,
                (std::vector<std::string>{"receiver's delegate: " + (message.selector + of)}));
    }
  });
}

TEST_F(AlertMessages, ADelegateIsToldNothingThatItDoesNotAnswer) {
  Process& process = booted();
  for (const Message& message : kMessages)
    ASSERT_TRUE(device.callback(process, [&] {  // else there is no process left
      makeAlerts(process, true, message.selector);
      tell(process, message, 0);
      EXPECT_EQ(heard.size(), 1u) << message.selector;
    })) << message.selector;
}

TEST_F(AlertMessages, TheQuestionIsAnsweredByTheArgumentsCallbackAlone) {
  Process& process = booted();
  device.callback(process, [&] {
    makeAlerts(process, true);
    const Value asked = Value::object(argument->address);
    EXPECT_TRUE(process.send(receiver, kQuestion, {asked}).asBool());
    EXPECT_EQ(heard, (std::vector<std::string>{
                         "argument's shouldEnableFirstOtherButtonInOurBlock of argument"}));
  });
}

TEST_F(AlertMessages, WithoutThatCallbackTheReceiversDelegateAnswersTheQuestion) {
  Process& process = booted();
  device.callback(process, [&] {
    makeAlerts(process, true);
    UIAlertView* bare = alert(process);
    EXPECT_FALSE(process.send(receiver, kQuestion, {Value::object(bare->address)}).asBool());
    EXPECT_EQ(heard,
              (std::vector<std::string>{
                  "receiver's delegate: alertViewShouldEnableFirstOtherButton: of another"}));
  });
}

TEST_F(AlertMessages, ADelegateThatDoesNotAnswerTheQuestionIsNotAsked) {
  Process& process = booted();
  EXPECT_TRUE(device.callback(process, [&] {
    makeAlerts(process, true, kQuestion);
    UIAlertView* bare = alert(process);
    EXPECT_TRUE(process.send(receiver, kQuestion, {Value::object(bare->address)}).asBool());
    EXPECT_TRUE(heard.empty());
  }));
}

TEST_F(AlertMessages, EachCallbackCanBeAskedForAndTakenBack) {
  Process& process = booted();
  device.callback(process, [&] {
    makeAlerts(process, true);
    std::set<Address> all;
    for (const Message& message : kMessages) {
      const Address block = process.send(argument, message.getter).bits;
      EXPECT_NE(block, 0u) << message.getter;
      all.insert(block);
      process.send(argument, message.setter, {Value::nil()});
      EXPECT_EQ(process.send(argument, message.getter).bits, 0u) << message.getter;
    }
    all.insert(process.send(argument, kQuestionGetter).bits);
    EXPECT_EQ(all.size(), 7u);
  });
}

// ---- What a callback does may end what it is called for

// Blocks that use themselves behind what they did: as code that still runs uses what it captured.
TEST_F(AlertMessages, ACallbackIsHeldWhileItReplacesItself) {
  Process& process = booted();
  device.callback(process, [&] {
    makeAlerts(process, false);
    const Value replacing =
        onTheStack(process, {Kind::Void, {Kind::Object, Kind::Long}, false}, [&](Invocation& call) {
          process.send(argument, "setResponseBlock:", {Value::nil()});
          process.object(call.arguments[0].bits);
          return Value::none();
        });
    process.send(argument, "setResponseBlock:", {replacing});
    tell(process, kMessages[3], 0);
    EXPECT_EQ(heard, (std::vector<std::string>{
                         "receiver's delegate: alertView:clickedButtonAtIndex: of argument 0"}));
  });
}

TEST_F(AlertMessages, TheQuestionsCallbackIsHeldWhileItReplacesItself) {
  Process& process = booted();
  device.callback(process, [&] {
    makeAlerts(process, false);
    const Value replacing =
        onTheStack(process, {Kind::Bool, {Kind::Object}, false}, [&](Invocation& call) {
          process.send(argument, kQuestionSetter, {Value::nil()});
          process.object(call.arguments[0].bits);
          return Value::boolean(false);
        });
    process.send(argument, kQuestionSetter, {replacing});
    EXPECT_FALSE(process.send(receiver, kQuestion, {Value::object(argument->address)}).asBool());
  });
}

TEST_F(AlertMessages, AnAlertIsHeldWhileItsCallbackLetsItGo) {
  Process& process = booted();
  device.callback(process, [&] {
    makeAlerts(process, false);
    argument = receiver;
    const Value ending =
        makeBlock(process, {Kind::Void, {Kind::Object, Kind::Long}, false}, [&](Invocation&) {
          std::erase_if(process.kept, [&](const auto& kept) { return kept.get() == receiver; });
          return Value::none();
        });
    process.send(receiver, "setResponseBlock:", {ending});
    tell(process, kMessages[3], 0);
    EXPECT_EQ(heard, (std::vector<std::string>{
                         "receiver's delegate: alertView:clickedButtonAtIndex: of receiver 0"}));
  });
}

// ---- Showing

const char* const kLong =
    "showWithTitleCVP:message:style:cancelButtonTitle:otherButtonTitles:responseBlock:";
const char* const kShort =
    "showWithTitleCVP:message:cancelButtonTitle:otherButtonTitles:responseBlock:";

TEST_F(AlertMessages, StyleButtonsAndResponseAreSetBeforeTheAlertIsShown) {
  Process& process = booted();
  calls.wantsAll = true;
  device.callback(process, [&] {
    const auto titles = process.allocateInstance(process.requireClass("NSMutableArray"));
    for (const char* title : {"one", "two"})
      process.send(titles.get(), "addObject:", {text(process, title)});
    calls.all.clear();
    process.send(
        cls(process, "UIAlertView"), kLong,
        {text(process, "T"), text(process, "M"), Value::integer(Kind::Long, 2), text(process, "C"),
         Value::object(titles->address), callback(process, kMessages[3], "response")});
  });
  EXPECT_LT(at("-[UIAlertView initWithTitle:"), at("-[UIAlertView setAlertViewStyle:2]"));
  EXPECT_EQ(calls.count("-[UIAlertView setAlertViewStyle:2]"), 1u);
  EXPECT_LT(at("-[UIAlertView setAlertViewStyle:2]"), at("-[UIAlertView addButtonWithTitle:"));
  EXPECT_LT(at("-[UIAlertView addButtonWithTitle:"), at("-[UIAlertView setDelegate:"));
  EXPECT_LT(at("-[UIAlertView setDelegate:"),
            at("objc_setAssociatedObject(<UIAlertView>, <pointer>, <block>, 771)"));
  EXPECT_LT(at("objc_setAssociatedObject(<UIAlertView>, <pointer>, <block>, 771)"),
            at(R"(-[UIAlertView show] "T" "M" ["C", "one", "two"] tag 0)"));
  EXPECT_LT(at(R"(-[UIAlertView show] "T" "M" ["C", "one", "two"] tag 0)"), calls.all.size());
}

TEST_F(AlertMessages, TheShortMethodShowsTheDefaultStyle) {
  Process& process = booted();
  calls.wantsAll = true;
  device.callback(process, [&] {
    process.send(cls(process, "UIAlertView"), kShort,
                 {text(process, "T"), Value::nil(), Value::nil(), Value::nil(), Value::nil()});
  });
  EXPECT_TRUE(calls.has("-[UIAlertView setAlertViewStyle:0]"));
}

TEST_F(AlertMessages, TheReceivingClassIsTheAlertsClass) {
  Process& process = booted();
  device.callback(process, [&] {
    Class& own = process.createClass("OwnAlert", process.findClass("UIAlertView"));
    process.registerClass(own);
    const Value none = Value::nil();
    const Value shown = process.send(&own, kShort, {none, none, none, none, none});
    EXPECT_EQ(process.object(shown.bits)->isa, &own);
    const Value styled =
        process.send(&own, kLong, {none, none, Value::integer(Kind::Long, 0), none, none, none});
    EXPECT_EQ(process.object(styled.bits)->isa, &own);
  });
}

// A class below it is for where somebody else has a category of the same selectors.
TEST_F(AlertMessages, TheLibrarysOwnAlertsAreOfThePlatformsClass) {
  device.state.networkFlags.reset();
  Process& process = booted();
  unlock(device);
  const UIAlertView* hint = topAlert(process);
  ASSERT_NE(hint, nullptr);
  EXPECT_EQ(hint->isa, process.findClass("UIAlertView"));
  EXPECT_EQ(process.findClass("CVPAlertView"), nullptr);
}

TEST_F(AlertMessages, HandlersAreHeldByTheAlertForAnyThread) {
  calls.wantsAll = true;
  Process& process = booted();
  device.callback(process, [&] {
    process.send(&process.sharedInstance(*process.findClass("SBLockScreenViewController")),
                 "finishUIUnlockFromSource:", {Value::integer(Kind::Int32, 0)});
  });
  EXPECT_TRUE(calls.has("objc_setAssociatedObject(<UIAlertView>, <pointer>, <CVPTWHandler>, 769)"));
  UIAlertView* welcome = topAlert(process);
  ASSERT_NE(welcome, nullptr);
  EXPECT_NE(welcome->associated(device.selector("show")), nullptr);
}

}  // namespace
}  // namespace sim
