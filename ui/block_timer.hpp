// Timers that run a block. The block travels as the timer's user info, as a copy that lives exactly
// as long as the timer.
#pragma once
#include "platform/foundation.hpp"

namespace corvalen::ui {

// A timer scheduled on the current run loop, which holds it until it is invalidated or, if it does
// not repeat, has fired. `block` takes and returns nothing; it is copied. Autoreleased.
platform::NSTimer scheduledTimer(NSTimeInterval seconds, platform::Object block, bool repeats);

// The same, unscheduled.
platform::NSTimer timer(NSTimeInterval seconds, platform::Object block, bool repeats);

// Adds the class methods of the category CVProTimer to NSTimer: the two above as
// scheduledTimerWithTimeInterval:block:repeats: and timerWithTimeInterval:block:repeats:, and the
// action that both rely on, rvExecuteSimpleBlock:.
void registerTimerCategory();

}  // namespace corvalen::ui
