// What belongs to the main thread is found out when another one touches it; calls can be
// interrupted, and pools must balance.
#include "sim/foundation/dictionary.hpp"
#include "sim/foundation/timer.hpp"
#include "tests/device_fixture.hpp"

namespace sim {
namespace {

class Threads : public DeviceTest {
 protected:
  // Runs `body` in SpringBoard on another thread and answers the crash line that came of it, if
  // any.
  std::string crashOffMain(const std::function<void(Process&)>& body) {
    Process& process = booted();
    return crashIn(process, body, Thread::Other);
  }
  std::string crashIn(Process& process, const std::function<void(Process&)>& body, Thread thread) {
    calls.all.clear();
    device.callback(
        process, [&] { body(process); }, thread);
    for (const auto& call : calls.all)
      if (call.starts_with("crash: ")) return call.substr(7);
    return "none";
  }
  static Address observer(Process& process, const std::string& name) {
    for (const auto& known : process.observers)
      if (known.name == name) return known.callback;
    return 0;
  }
  static void notify(Process& process, const std::string& name) {
    process.library().call(observer(process, name), Kind::Void,
                           std::vector<Value>(5, Value::of(Kind::Pointer, 0)));
  }
};

TEST_F(Threads, UIKitIsTheMainThreads) {
  EXPECT_EQ(crashOffMain([](Process& process) {
              process.send(cls(process, "UIApplication"), "sharedApplication");
            }),
            "+[UIApplication sharedApplication] off the main thread");
}

TEST_F(Threads, SpringBoardsObjectsAreTheMainThreads) {
  EXPECT_EQ(crashOffMain([](Process& process) {
              process.send(cls(process, "SBMediaController"), "sharedInstance");
            }),
            "+[SBMediaController sharedInstance] off the main thread");
}

TEST_F(Threads, ReferencesAreCountedOnAny) {
  EXPECT_EQ(crashOffMain([](Process& process) {
              process.send(&process.shared<Object>("SBIconController"), "retain");
              process.send(&process.shared<Object>("SBIconController"), "release");
            }),
            "none");
}

TEST_F(Threads, WhatChangesBelongsToTheThreadThatMadeIt) {
  Process& process = booted();
  process.kept.emplace_back(process.make<NSMutableDictionary>("NSMutableDictionary"));
  const auto count = [](Process& p) { p.send(p.kept.back().get(), "count"); };
  EXPECT_EQ(crashIn(process, count, Thread::Main), "none");
  EXPECT_EQ(crashIn(process, count, Thread::Other),
            "-[NSMutableDictionary count] on another thread than it was made on");
}

TEST_F(Threads, TimersNeedARunLoop) {
  EXPECT_EQ(crashOffMain([](Process& process) {
              process.make<NSTimer>("NSTimer", 1.0, nullptr, "fire", nullptr, false)->schedule();
            }),
            "a timer scheduled where no run loop runs");
}

TEST_F(Threads, TheLibrarysVariablesAreTheMainThreads) {
  EXPECT_EQ(crashOffMain([](Process& process) { notify(process, "bfaK8ayWXeXMQum"); }),
            "a variable of the main thread's was changed off it");
}

TEST_F(Threads, TheHeadphoneHandlerGoesToTheMainThreadFirst) {
  const std::string name = "AVSystemController_HeadphoneJackIsConnectedDidChangeNotification";
  device.state.headphones = true;
  EXPECT_EQ(crashOffMain([&](Process& process) { notify(process, name); }), "none");
  calls.all.clear();
  calls.wantsAll = true;
  device.drain();
  EXPECT_TRUE(calls.has("+[AVSystemController sharedAVSystemController]"));
}

TEST_F(Threads, APoolThatIsNotPoppedIsFound) {
  EXPECT_EQ(crashIn(
                booted(), [](Process& process) { process.pushPool(); }, Thread::Main),
            "an autorelease pool was pushed and not popped");
}

TEST_F(Threads, AnAtomicAssociationOutlivesItsChange) {
  constexpr Address kKey = 0x1000;
  constexpr std::uint64_t kRetain = 0x301;
  const auto useAfterChange = [](std::uint64_t policy) {
    return [policy](Process& process) {
      const auto owner = process.make<Object>("NSObject");
      owner->associate(kKey, makeString(process, "held").get(), policy);
      const Value value =
          process.callFunction("objc_getAssociatedObject",
                               {Value::object(owner->address), Value::of(Kind::Pointer, kKey)});
      owner->associate(kKey, nullptr, policy);
      process.send(process.object(value.bits), "length");
    };
  };
  constexpr std::uint64_t kRetainNonatomic = 1;
  EXPECT_EQ(crashIn(booted(), useAfterChange(kRetain), Thread::Main), "none");
  EXPECT_EQ(crashIn(booted(), useAfterChange(kRetainNonatomic), Thread::Main),
            "use of a freed NSString");
}

TEST_F(Threads, ACallIsInterruptedOnceByWhatWaitsForIt) {
  Process& process = booted();
  int happened = 0;
  device.during("hasTrack", [&] { ++happened; });
  const auto ask = [](Process& p) {
    Object* controller = p.object(p.send(cls(p, "SBMediaController"), "sharedInstance").bits);
    p.send(controller, "hasTrack");
  };
  EXPECT_EQ(crashIn(process, ask, Thread::Main), "none");
  EXPECT_EQ(crashIn(process, ask, Thread::Main), "none");
  EXPECT_EQ(happened, 1);
}

}  // namespace
}  // namespace sim
