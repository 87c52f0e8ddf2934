// Carries injected faults out on one device, and takes down what could be made to fail. Stands in
// for whatever fails on a phone; leaves out failures of what the library does not call.
#pragma once
#include <map>
#include <set>

#include "sim/core/injection.hpp"
#include "sim/inject/fault.hpp"

namespace sim::inject {

class Injector final : public Injection {
 public:
  explicit Injector(std::vector<InjectedFault> faults);

  std::optional<Value> instead(const NativeCode& code, Invocation& call) override;
  void ran(const NativeCode& code, const Invocation& call, const Value& result) override;
  int deliveries() const override { return deliveries_; }
  Microseconds deliveryDelay() const override { return deliveryDelay_; }
  Microseconds timerLateness() const override { return timerLateness_; }
  void beforeStep(Device& device) override;

  // Around each command of the tour: `line` is about to be played; it was. The first answers
  // whether it changed the settings file.
  bool before(Device& device, const std::string& line);
  void after(Device& device);

  // Whether any call failed or answered another object, as it was to.
  bool struck() const { return struck_; }
  // Calls that were answered with something, and could have failed; initialisers among them.
  const std::set<std::string>& answered() const { return answered_; }
  const std::set<std::string>& initialisers() const { return initialisers_; }
  // Processes and the steps of the queue before which they lived.
  const std::set<std::pair<std::string, long>>& livedAt() const { return livedAt_; }

 private:
  std::vector<InjectedFault> faults_;
  std::set<std::string> failing_;
  std::set<std::string> answeringAnother_;
  int deliveries_ = 1;
  Microseconds deliveryDelay_ = 0;
  Microseconds timerLateness_ = 0;
  std::map<std::string, bool> killed_;  // processes by name, and whether they are daemons
  bool struck_ = false;

  std::set<std::string> answered_;
  std::set<std::string> initialisers_;
  std::set<std::pair<std::string, long>> livedAt_;
};

}  // namespace sim::inject
