// Cydia Substrate. Leaves out its loader, with filters and safe mode: every process that starts has
// the library; and instructions, as functions are replaced by their name and not by a jump written
// into them.
#include <fmt/format.h>

#include "sim/platform/functions.hpp"

namespace sim {

namespace {

// What is missing on the phone is passed over; what never may be is a mistake.
void checkHook(Pointer replacement, Pointer slot) {
  if (!replacement.address) throw Fault("a hook without a replacement");
  if (!slot.address) throw Fault("a hook without a slot for the previous implementation");
}

void hookMessage(Process& process, Class* cls, Selector name, Pointer replacement, Pointer slot) {
  checkHook(replacement, slot);
  process.hookMethod(cls, process.selectorName(name.address), replacement.address, slot.address);
}

void hookFunction(Process& process, Pointer function, Pointer replacement, Pointer slot) {
  checkHook(replacement, slot);
  process.hookFunction(function.address, replacement.address, slot.address);
}

std::string describeMethod(const Invocation& invocation) {
  const auto* cls = invocation.object(0);
  return fmt::format("MSHookMessageEx({}, {})", cls ? cls->description() : "nil",
                     invocation.process.selectorName(invocation.arguments[1].bits));
}

std::string describeFunction(const Invocation& invocation) {
  return fmt::format("MSHookFunction({})",
                     invocation.process.functionName(invocation.arguments[0].bits));
}

}  // namespace

Functions substrateFunctions() {
  return {
      effect(bindFunction("MSHookMessageEx", &hookMessage), describeMethod),
      effect(bindFunction("MSHookFunction", &hookFunction), describeFunction),
  };
}

}  // namespace sim
