// What a test makes go wrong on the device. Without one, the platform behaves. Stands in for a
// phone's bad days; leaves out wrong answers of another class than is documented, and losses within
// one call.
#pragma once
#include <optional>
#include <string>

#include "sim/core/class.hpp"
#include "sim/core/trace.hpp"

namespace sim {

class Device;

class Injection {
 public:
  virtual ~Injection() = default;

  // Platform code is about to run for the library, and its trace line is out. An answer given here
  // is given in its place.
  virtual std::optional<Value> instead(const NativeCode&, Invocation&) { return std::nullopt; }
  // Platform code has run for the library.
  virtual void ran(const NativeCode&, const Invocation&, const Value& /*result*/) {}

  // How often a posted notification arrives, and how much later.
  virtual int deliveries() const { return 1; }
  virtual Microseconds deliveryDelay() const { return 0; }
  // How much later than due timers fire.
  virtual Microseconds timerLateness() const { return 0; }
  // Before each step of the device's queue.
  virtual void beforeStep(Device&) {}
};

}  // namespace sim
