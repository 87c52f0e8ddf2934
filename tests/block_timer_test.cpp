// Timers that run a block, as an app meets them through the methods added to NSTimer.
#include "tests/device_fixture.hpp"

namespace sim {
namespace {

const char* const kScheduled = "scheduledTimerWithTimeInterval:block:repeats:";
const char* const kUnscheduled = "timerWithTimeInterval:block:repeats:";

class BlockTimer : public DeviceTest {
 protected:
  int fired = 0;
  Value counting(Process& process) {
    return makeBlock(process, {}, [this](Invocation&) {
      ++fired;
      return Value::none();
    });
  }
  // The same, as a function has it that only passes it on.
  Value onTheStack(Process& process) {
    const Value block = counting(process);
    process.library().writePointer(block.bits, process.library().variable("_NSConcreteStackBlock"));
    return block;
  }
  static void overwrite(Process& process, const Value& block) {
    process.library().writePointer(block.bits + process.library().pointerSize() + 8, 0);
  }
};

TEST_F(BlockTimer, RepeatsUntilItIsInvalidated) {
  Process& process = booted();
  Ref<Object> timer;
  device.callback(process, [&] {
    timer = process.object(process
                               .send(cls(process, "NSTimer"), kScheduled,
                                     {Value::real(1.0), counting(process), Value::boolean(true)})
                               .bits);
  });
  device.advance(3'000'000);
  EXPECT_EQ(fired, 3);
  device.callback(process, [&] { process.send(timer.get(), "invalidate"); });
  device.advance(3'000'000);
  EXPECT_EQ(fired, 3);
}

TEST_F(BlockTimer, FiresOnceIfItDoesNotRepeat) {
  Process& process = booted();
  device.callback(process, [&] {
    process.send(cls(process, "NSTimer"), kScheduled,
                 {Value::real(0.5), counting(process), Value::boolean(false)});
  });
  device.advance(5'000'000);
  EXPECT_EQ(fired, 1);
}

TEST_F(BlockTimer, UnscheduledOnesAreMadeAsAsked) {
  calls.wantsAll = true;
  Process& process = booted();
  device.callback(process, [&] {
    for (const bool repeats : {true, false})
      process.send(cls(process, "NSTimer"), kUnscheduled,
                   {Value::real(3.0), counting(process), Value::boolean(repeats)});
  });
  for (const char* repeats : {"YES", "NO"})
    EXPECT_EQ(calls.count(std::string("+[NSTimer timerWithTimeInterval:3 target:NSTimer "
                                      "selector:rvExecuteSimpleBlock: userInfo:<block> repeats:") +
                          repeats + "]"),
              1u);
}

TEST_F(BlockTimer, ABlockIsHeldWhileItInvalidatesItsTimer) {
  Process& process = booted();
  calls.all.clear();
  device.callback(process, [&] {
    Object* timer = nullptr;
    const Value ending = makeBlock(process, {}, [&](Invocation& call) {
      process.send(timer, "invalidate");
      process.object(call.arguments[0].bits);  // what it captured
      ++fired;
      return Value::none();
    });
    process.library().writePointer(ending.bits,
                                   process.library().variable("_NSConcreteStackBlock"));
    timer = process.object(process
                               .send(cls(process, "NSTimer"), kUnscheduled,
                                     {Value::real(1.0), ending, Value::boolean(true)})
                               .bits);
    process.send(timer, "fire");
  });
  expectNoCrash();
  EXPECT_EQ(fired, 1);
}

TEST_F(BlockTimer, TheMethodsTypesAreThoseOfTheirFunctions) {
  Process& process = booted();
  const Class& methods = *process.findClass("NSTimer")->isa;
  const char* made = process.library().pointerSize() == 8 ? "@@:d@?B" : "@@:d@?c";
  EXPECT_EQ(methods.methods.at(kScheduled).types, made);
  EXPECT_EQ(methods.methods.at(kUnscheduled).types, made);
  EXPECT_EQ(methods.methods.at("rvExecuteSimpleBlock:").types, "v@:@");
}

TEST_F(BlockTimer, UnscheduledOnesFireOnlyWhenTold) {
  Process& process = booted();
  device.callback(process, [&] {
    const Value timer = process.send(cls(process, "NSTimer"), kUnscheduled,
                                     {Value::real(1.0), counting(process), Value::boolean(true)});
    device.clock.advance(5'000'000, [] {});
    EXPECT_EQ(fired, 0);
    process.send(process.object(timer.bits), "fire");
  });
  EXPECT_EQ(fired, 1);
}

TEST_F(BlockTimer, ATimerWithoutUserInfoFiresWithoutEffect) {
  Process& process = booted();
  device.callback(process, [&] {
    process.send(cls(process, "NSTimer"),
                 "scheduledTimerWithTimeInterval:target:selector:userInfo:repeats:",
                 {Value::real(1.0), Value::object(cls(process, "NSTimer")->address),
                  Value::of(Kind::Selector, process.selector("rvExecuteSimpleBlock:")),
                  Value::nil(), Value::boolean(true)});
  });
  calls.all.clear();
  device.advance(2'000'000);
  EXPECT_TRUE(calls.all.empty());
  EXPECT_NE(device.springBoard(), nullptr);
}

// A stack block goes with its function; the timer's copy must not. The caller's own block is
// overwritten: its invoke leads nowhere from then on.
TEST_F(BlockTimer, AScheduledTimersBlockIsCopied) {
  Process& process = booted();
  device.callback(process, [&] {
    const Value block = onTheStack(process);
    process.send(cls(process, "NSTimer"), kScheduled,
                 {Value::real(1.0), block, Value::boolean(true)});
    overwrite(process, block);
  });
  device.advance(2'000'000);
  EXPECT_EQ(fired, 2);
  EXPECT_NE(device.springBoard(), nullptr);
}

TEST_F(BlockTimer, AnUnscheduledTimersBlockIsCopied) {
  Process& process = booted();
  device.callback(process, [&] {
    const Value block = onTheStack(process);
    const Value timer = process.send(cls(process, "NSTimer"), kUnscheduled,
                                     {Value::real(1.0), block, Value::boolean(true)});
    overwrite(process, block);
    process.send(process.object(timer.bits), "fire");
  });
  EXPECT_EQ(fired, 1);
  EXPECT_NE(device.springBoard(), nullptr);
}

}  // namespace
}  // namespace sim
