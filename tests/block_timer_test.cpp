// Timers that run a block, as an app meets them through the methods added to NSTimer.
#include "tests/device_fixture.hpp"

namespace sim {
namespace {

const char* const kScheduled = "scheduledTimerWithTimeInterval:block:repeats:";

class BlockTimer : public DeviceTest {
 protected:
  int fired = 0;
  Value counting(Process& process) {
    return makeBlock(process, {}, [this](Invocation&) {
      ++fired;
      return Value::none();
    });
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

TEST_F(BlockTimer, UnscheduledOnesFireOnlyWhenTold) {
  Process& process = booted();
  device.callback(process, [&] {
    const Value timer =
        process.send(cls(process, "NSTimer"), "timerWithTimeInterval:block:repeats:",
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

// A stack block goes with its function; the timer's copy must not.
TEST_F(BlockTimer, TheBlockIsCopiedWhenTheTimerIsMade) {
  Process& process = booted();
  Library& library = process.library();
  device.callback(process, [&] {
    const Address block = counting(process).bits;
    library.writePointer(block, library.variable("_NSConcreteStackBlock"));
    process.send(cls(process, "NSTimer"), kScheduled,
                 {Value::real(1.0), Value::object(block), Value::boolean(true)});
    // The caller's own block is overwritten: its invoke now leads nowhere.
    library.writePointer(block + library.pointerSize() + 8, 0);
  });
  device.advance(2'000'000);
  EXPECT_EQ(fired, 2);
  EXPECT_NE(device.springBoard(), nullptr);
}

}  // namespace
}  // namespace sim
