// CoreFoundation's notification centers, arrays and reference counts. Leaves out removing
// observers, observers that wait while a process sleeps, and arrays with callbacks of one's own.
#include <fmt/format.h>

#include "sim/core/trace.hpp"
#include "sim/foundation/array.hpp"
#include "sim/foundation/string.hpp"
#include "sim/platform/functions.hpp"

namespace sim {

namespace {

// The two centers are opaque; nobody looks inside.
constexpr Address kDarwinCenter = 0x41000000;
constexpr Address kLocalCenter = 0x41000010;

Pointer darwinCenter(Process&) { return {kDarwinCenter}; }
Pointer localCenter(Process&) { return {kLocalCenter}; }

void addObserver(Process& process, Pointer center, Pointer observer, Pointer callback,
                 NSString* name, Pointer object, long behavior) {
  constexpr long kDeliverImmediately = 4;
  if (center.address != kDarwinCenter && center.address != kLocalCenter)
    throw Fault("CFNotificationCenterAddObserver on an unknown center");
  if (!name || !callback.address) throw Fault("an observer without name or callback");
  if (observer.address) throw Fault("an observer that is not null, and that nobody removes");
  if (object.address) throw Fault("an observer of one object, which is not what posts");
  if (behavior != kDeliverImmediately) throw Fault("an observer that is not delivered at once");
  process.observers.push_back({name->text, callback.address, center.address == kDarwinCenter});
}

std::string describeObserver(const Invocation& invocation) {
  const bool darwin = invocation.arguments[0].bits == kDarwinCenter;
  return fmt::format("CFNotificationCenterAddObserver({}, {})", darwin ? "darwin" : "local",
                     invocation.object(3) ? invocation.object(3)->description() : "nil");
}

// Without callbacks the elements are neither retained nor released.
Owned<NSMutableArray> createArray(Process& process, Pointer, long, Pointer callbacks) {
  return {process.make<NSMutableArray>("NSMutableArray", callbacks.address != 0)};
}

void cfRelease(Process&, Object* object) {
  if (!object) throw Fault("CFRelease of NULL");
  object->libraryRelease();
}

}  // namespace

Functions coreFoundationFunctions() {
  return {
      bindFunction("CFNotificationCenterGetDarwinNotifyCenter", &darwinCenter),
      bindFunction("CFNotificationCenterGetLocalCenter", &localCenter),
      effect(bindFunction("CFNotificationCenterAddObserver", &addObserver), describeObserver),
      bindFunction("CFArrayCreateMutable", &createArray),
      bindFunction("CFRelease", &cfRelease),
  };
}

}  // namespace sim
