#include "ui/block_timer.hpp"

#include "platform/added_method.hpp"
#include "platform/block.hpp"

namespace corvalen::ui {

using namespace platform;

namespace {

// +[NSTimer rvExecuteSimpleBlock:]
void executeSimpleBlock(id, SEL, id firing) {
  // The block may invalidate the timer and so end its own life: it is held over the call.
  const auto block = Retained<Object>::retain(view<NSTimer>(firing).userInfo());
  invokeBlock(block.get());
}

// +[NSTimer scheduledTimerWithTimeInterval:block:repeats:]
id scheduledTimerMethod(id, SEL, double seconds, BlockPointer block, BOOL repeats) {
  return scheduledTimer(seconds, view(reinterpret_cast<id>(block)), repeats != 0).raw;
}

// +[NSTimer timerWithTimeInterval:block:repeats:]
id timerMethod(id, SEL, double seconds, BlockPointer block, BOOL repeats) {
  return timer(seconds, view(reinterpret_cast<id>(block)), repeats != 0).raw;
}

// docs/decisions.md: Categories are added at run time
constexpr AddedMethod kClassMethods[] = {
    addedMethod<&executeSimpleBlock, "rvExecuteSimpleBlock:">(),
    addedMethod<&scheduledTimerMethod, "scheduledTimerWithTimeInterval:block:repeats:">(),
    addedMethod<&timerMethod, "timerWithTimeInterval:block:repeats:">(),
};

Retained<Object> copyOf(Object block) {
  return Retained<Object>::adopt(send<"copy", Object>(block));
}

}  // namespace

NSTimer scheduledTimer(NSTimeInterval seconds, Object block, bool repeats) {
  const auto copy = copyOf(block);
  const ClassObject target = NSTimer::cls();
  const SEL action = selector<"rvExecuteSimpleBlock:">();
  return NSTimer::scheduledTimer(seconds, target, action, copy.get(), repeats);
}

NSTimer timer(NSTimeInterval seconds, Object block, bool repeats) {
  const auto copy = copyOf(block);
  const ClassObject target = NSTimer::cls();
  const SEL action = selector<"rvExecuteSimpleBlock:">();
  return NSTimer::timer(seconds, target, action, copy.get(), repeats);
}

void registerTimerCategory() {
  if (const Class cls = NSTimer::cls().cls()) addMethods<kClassMethods>(metaclassOf(cls));
}

}  // namespace corvalen::ui
