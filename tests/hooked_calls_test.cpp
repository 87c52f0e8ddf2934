// What a hook may not do with a call: pass on something else, answer something else.
#include "sim/foundation/dictionary.hpp"
#include "tests/device_fixture.hpp"

namespace sim {
namespace {

using Values = std::vector<Value>;

class HookedCalls : public DeviceTest {
 protected:
  // What a hook does with the call; `previous` passes on what it is given.
  using Previous = std::function<Value(Values)>;
  using Body = std::function<Value(const Invocation&, const Previous& previous)>;

  // Hooks a method as a library does, on top of ours.
  void hook(Process& process, const std::string& className, const std::string& selector,
            const Body& body) {
    const Signature signature = process.findClass(className)->find(selector)->signature;
    const Address slot = process.library().allocate(8);
    auto code = std::make_shared<NativeCode>();
    code->name = selector;
    code->signature = signature;
    code->relay = true;
    code->run = [=, this](Invocation& call) {
      return body(call, [&](Values arguments) {
        arguments.insert(arguments.begin(),
                         {Value::object(receiver ? receiver : call.self->address),
                          Value::of(Kind::Selector, call.process.selector(call.name))});
        Library& library = call.process.library();
        return library.call(library.readPointer(slot), signature.result, arguments);
      });
    };
    process.hookMethod(process.findClass(className), selector, process.library().expose(code, true),
                       slot);
  }
  // The crash line that comes of sending it; "none" if none does.
  std::string sent(Process& process, const std::string& className, const std::string& selector,
                   const std::function<Values()>& arguments) {
    calls.all.clear();
    device.callback(process, [&] {
      Object& object = process.sharedInstance(*process.findClass(className));
      process.send(&object, selector, arguments());
    });
    for (const std::string& call : calls.all)
      if (call.starts_with("crash: ")) return call.substr(7);
    return "none";
  }
  std::string launched(const Body& body) {
    Process& process = booted();
    hook(process, "SpringBoard", "launchApplicationWithIdentifier:suspended:", body);
    return sent(process, "SpringBoard", "launchApplicationWithIdentifier:suspended:", [&] {
      return Values{text(process, "com.apple.Music"), Value::boolean(true)};
    });
  }

  Address receiver = 0;  // of what is passed on; 0: the same
  const std::string launch = "-[SpringBoard launchApplicationWithIdentifier:suspended:]";
};

TEST_F(HookedCalls, WhatIsPassedOnAsItIsAndAnsweredAsItIsIsFine) {
  EXPECT_EQ(launched([](const Invocation& call, const Previous& previous) {
              return previous(call.arguments);
            }),
            "none");
}

TEST_F(HookedCalls, AChangedNumberIsFoundByItsName) {
  EXPECT_EQ(launched([](const Invocation& call, const Previous& previous) {
              return previous({call.arguments[0], Value::boolean(false)});
            }),
            launch +
                " was called with suspended: YES, but reached the platform's own "
                "implementation with NO");
}

TEST_F(HookedCalls, AnotherObjectThatIsEqualIsAnotherArgument) {
  EXPECT_EQ(launched([](const Invocation& call, const Previous& previous) {
              return previous({text(call.process, "com.apple.Music"), call.arguments[1]});
            }),
            launch +
                " was called with launchApplicationWithIdentifier: \"com.apple.Music\", but "
                "reached the platform's own implementation with \"com.apple.Music\"");
}

TEST_F(HookedCalls, AnotherReceiverIsFound) {
  EXPECT_EQ(launched([this](const Invocation& call, const Previous& previous) {
              Process& process = call.process;
              receiver = process.autorelease(process.allocateInstance(*call.self->isa))->address;
              return previous(call.arguments);
            }),
            launch + " reached the platform's own implementation with another receiver");
}

TEST_F(HookedCalls, PassingOnTwiceIsFound) {
  EXPECT_EQ(launched([](const Invocation& call, const Previous& previous) {
              previous(call.arguments);
              return previous(call.arguments);
            }),
            launch + " reached the platform's own implementation twice");
}

TEST_F(HookedCalls, AnotherAnswerIsFound) {
  EXPECT_EQ(launched([](const Invocation& call, const Previous& previous) {
              previous(call.arguments);
              return Value::boolean(false);
            }),
            launch + " answered NO, not the YES that the platform's own implementation answered");
}

TEST_F(HookedCalls, WhatIsSwallowedAnswersNothing) {
  EXPECT_EQ(launched([](const Invocation&, const Previous&) { return Value::boolean(false); }),
            "none");
  EXPECT_EQ(launched([](const Invocation&, const Previous&) { return Value::boolean(true); }),
            launch + " answered YES, though it never reached the platform's own implementation");
}

TEST_F(HookedCalls, AnInitialiserAnswersWhatThePlatformsAnswers) {
  device.state.tellingArguments = true;
  Process& process = booted();
  const auto init = [](const Invocation& call, const Previous& previous) {
    previous(call.arguments);
    return Value::object(call.self->address);
  };
  hook(process, "MPUMediaControlsTitlesView", "initWithMediaControlsStyle:", init);
  EXPECT_EQ(sent(process, "MPUMediaControlsTitlesView", "initWithMediaControlsStyle:",
                 [] { return Values{Value::integer(Kind::Long, 3)}; }),
            "-[MPUMediaControlsTitlesView initWithMediaControlsStyle:] answered "
            "<MPUMediaControlsTitlesView>, not the <MPUMediaControlsTitlesView> that the "
            "platform's own implementation answered");
}

TEST_F(HookedCalls, OnlyTheDisplayedNameMayChange) {
  Process& process = booted();
  const auto another = [](const Invocation& call, const Previous& previous) {
    return previous({text(call.process, "Another")});
  };
  hook(process, "MPUMediaControlsTitlesView", "updateNowPlayingAppDisplayName:", another);
  EXPECT_EQ(sent(process, "MPUMediaControlsTitlesView",
                 "updateNowPlayingAppDisplayName:", [&] { return Values{text(process, "Music")}; }),
            "none");
  hook(process, "SBMediaController", "setNowPlayingInfo:",
       [](const Invocation&, const Previous& previous) { return previous({Value::nil()}); });
  EXPECT_EQ(
      sent(process, "SBMediaController", "setNowPlayingInfo:",
           [&] {
             return Values{Value::object(process.autorelease(makeDictionary(process))->address)};
           }),
      "-[SBMediaController setNowPlayingInfo:] was called with setNowPlayingInfo: "
      "<NSDictionary>, but reached the platform's own implementation with nil");
}

// ---- What is installed

TEST_F(HookedCalls, AHookNeedsAReplacementAndASlot) {
  for (const bool slotIsMissing : {true, false}) {
    Process& process = booted();
    calls.all.clear();
    device.callback(process, [&] {
      const Value something = Value::of(Kind::Pointer, process.library().allocate(8));
      const Value nothing = Value::of(Kind::Pointer, 0);
      process.callFunction(
          "MSHookMessageEx",
          {Value::of(Kind::Class, process.findClass("SpringBoard")->address),
           Value::of(Kind::Selector, process.selector("init")), slotIsMissing ? something : nothing,
           slotIsMissing ? nothing : something});
    });
    EXPECT_TRUE(calls.has(slotIsMissing
                              ? "crash: a hook without a slot for the previous implementation"
                              : "crash: a hook without a replacement"));
  }
}

TEST_F(HookedCalls, ObserversAreOfNobodyAndOfNoObject) {
  for (const bool observerIsGiven : {true, false}) {
    Process& process = booted();
    calls.all.clear();
    device.callback(process, [&] {
      const Value something = Value::of(Kind::Pointer, process.library().allocate(8));
      const Value nothing = Value::of(Kind::Pointer, 0);
      const Value center = process.callFunction("CFNotificationCenterGetLocalCenter", {});
      process.callFunction(
          "CFNotificationCenterAddObserver",
          {center, observerIsGiven ? something : nothing, something, text(process, "name"),
           observerIsGiven ? nothing : something, Value::integer(Kind::Long, 4)});
    });
    EXPECT_TRUE(calls.has(observerIsGiven
                              ? "crash: an observer that is not null, and that nobody removes"
                              : "crash: an observer of one object, which is not what posts"));
  }
}

}  // namespace
}  // namespace sim
