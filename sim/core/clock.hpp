// The device's virtual clock: time moves only by advance(). Stands in for the machine's clock and
// for every run loop's timers; leaves out time that work takes.
#pragma once
#include <functional>
#include <optional>
#include <vector>

#include "sim/core/trace.hpp"

namespace sim {

class Clock {
 public:
  using TimerId = std::uint64_t;

  Microseconds now() const { return now_; }

  // Runs `fire` after `delay`; a repeating one again an interval after each due time.
  TimerId schedule(Microseconds delay, bool repeats, std::function<void()> fire);
  std::optional<Microseconds> nextDue() const;  // when the next one is due, on the same scale
  void cancel(TimerId timer);                   // unknown ones are ignored

  // Fires what is due within `span`, in order of due time, then of creation, each `lateness` after
  // its due time; calls `settle` after each. A repeating timer that was so late that it is due
  // again has missed those times. Leaves the clock `span` later.
  void advance(Microseconds span, const std::function<void()>& settle, Microseconds lateness = 0);

 private:
  struct Timer {
    TimerId id;
    Microseconds due;
    Microseconds interval;
    bool repeats;
    std::function<void()> fire;
  };
  std::optional<std::size_t> earliest(Microseconds until) const;

  Microseconds now_ = 0;
  TimerId nextId_ = 1;
  std::vector<Timer> timers_;
};

}  // namespace sim
