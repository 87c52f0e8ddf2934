// NSTimer on the device's virtual clock. The run loop holds a scheduled timer, and the timer its
// target and user info, until it is invalidated. Leaves out tolerances, fire dates, and run loops
// of other threads than the main one.
#pragma once
#include "sim/core/process.hpp"

namespace sim {

class NSTimer final : public Object {
 public:
  // The interval is in seconds.
  NSTimer(Process& process, double interval, Object* target, std::string action, Object* userInfo,
          bool repeats);

  void schedule();
  void fire();
  void invalidate();
  bool isValid() const { return valid_; }
  Object* userInfo() const { return userInfo_.get(); }  // borrowed

 private:
  void drop();

  double interval_;
  Ref<Object> target_;
  std::string action_;
  Ref<Object> userInfo_;
  bool repeats_;
  bool valid_ = true;
  Ref<Object> runLoopHolds_;
  Clock::TimerId clockTimer_ = 0;
};

}  // namespace sim
