#include "sim/foundation/timer.hpp"

#include <fmt/format.h>

#include <cmath>

#include "sim/core/class_definition.hpp"
#include "sim/core/device.hpp"
#include "sim/foundation/definitions.hpp"

namespace sim {

namespace {

constexpr double kShortest = 0.0001;  // seconds
constexpr double kMicroseconds = 1e6;

}  // namespace

NSTimer::NSTimer(Process& owner, double interval, Object* target, std::string action,
                 Object* userInfo, bool repeats)
    : Object(owner),
      interval_(interval > 0 ? interval : kShortest),
      target_(target),
      action_(std::move(action)),
      userInfo_(userInfo),
      repeats_(repeats) {}

void NSTimer::schedule() {
  if (process.thread != Thread::Main) throw Fault("a timer scheduled where no run loop runs");
  runLoopHolds_ = Ref<Object>(this);
  Process* owner = &process;
  const auto delay = static_cast<Microseconds>(std::llround(interval_ * kMicroseconds));
  clockTimer_ = process.device.clock.schedule(
      delay, repeats_, [this, owner] { owner->device.callback(*owner, [this] { fire(); }); });
  process.timers.insert(clockTimer_);
}

// The run loop holds the timer over the call: it may invalidate itself.
void NSTimer::fire() {
  const Ref<Object> alive(this);
  const Ref<Object> target = target_;
  const CallSpan span(process.device.callTree, CallTree::Kind::Timer, process.identifier, "");
  process.send(target.get(), action_, {Value::object(address)});
  if (!repeats_ && valid_) {
    valid_ = false;
    drop();
  }
}

void NSTimer::invalidate() {
  if (!valid_) return;
  valid_ = false;
  drop();
}

void NSTimer::drop() {
  process.device.clock.cancel(clockTimer_);
  process.timers.erase(clockTimer_);
  target_ = {};
  userInfo_ = {};
  const Ref<Object> last = std::move(runLoopHolds_);  // may be the last reference
  runLoopHolds_ = {};
}

namespace {

Ref<NSTimer> make(Class& cls, double interval, Object* target, Selector action, Object* userInfo,
                  bool repeats) {
  const std::string& name = cls.process.selectorName(action.address);
  return cls.process.make<NSTimer>("NSTimer", interval, target, name, userInfo, repeats);
}

Ref<NSTimer> makeScheduled(Class& cls, double interval, Object* target, Selector action,
                           Object* userInfo, bool repeats) {
  auto timer = make(cls, interval, target, action, userInfo, repeats);
  timer->schedule();
  return timer;
}

std::string describeScheduled(const Invocation& invocation) {
  return fmt::format("+[NSTimer scheduledTimerWithTimeInterval:{} repeats:{}]",
                     shownNumber(invocation.arguments[0].asReal()),
                     invocation.arguments[4].asBool() ? "YES" : "NO");
}

// Only the invalidation of a valid timer is an effect.
Value invalidate(Invocation& invocation) {
  auto& timer = dynamic_cast<NSTimer&>(*invocation.self);
  if (timer.isValid())
    invocation.process.device.effect(
        invocation.process, "-[NSTimer invalidate]",
        invocation.caller == Caller::Library ? CallTree::By::Library : CallTree::By::Platform);
  timer.invalidate();
  return Value::none();
}

}  // namespace

ClassDefinition defineNSTimer() {
  auto definition = ClassDefinition::of<NSTimer>("NSTimer", "NSObject", Home::everywhere());
  definition
      .classMethod("scheduledTimerWithTimeInterval:target:selector:userInfo:repeats:",
                   &makeScheduled)
      .effect(describeScheduled);
  definition.classMethod("timerWithTimeInterval:target:selector:userInfo:repeats:", &make);
  NativeCode code{"invalidate", {Kind::Void, {}, false}, invalidate};
  code.relay = true;
  definition.code(std::move(code));
  definition.method("userInfo", &NSTimer::userInfo);
  definition.method("isValid", &NSTimer::isValid);
  definition.method("fire", &NSTimer::fire);
  return definition;
}

}  // namespace sim
