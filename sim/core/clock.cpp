#include "sim/core/clock.hpp"

#include <algorithm>
#include <limits>

namespace sim {

Clock::TimerId Clock::schedule(Microseconds delay, bool repeats, std::function<void()> fire) {
  timers_.push_back({nextId_, now_ + delay, delay, repeats, std::move(fire)});
  return nextId_++;
}

void Clock::cancel(TimerId timer) {
  std::erase_if(timers_, [&](const Timer& t) { return t.id == timer; });
}

std::optional<Microseconds> Clock::nextDue() const {
  const auto next = earliest(std::numeric_limits<Microseconds>::max());
  return next ? std::optional(timers_[*next].due) : std::nullopt;
}

// Timers stand in order of creation, so the first of equals is the oldest.
std::optional<std::size_t> Clock::earliest(Microseconds until) const {
  std::optional<std::size_t> found;
  for (std::size_t i = 0; i < timers_.size(); ++i)
    if (timers_[i].due <= until && (!found || timers_[i].due < timers_[*found].due)) found = i;
  return found;
}

void Clock::advance(Microseconds span, const std::function<void()>& settle, Microseconds lateness) {
  const Microseconds end = now_ + span;
  while (const auto next = earliest(end - lateness)) {
    Timer& timer = timers_[*next];
    now_ = std::max(now_, timer.due + lateness);
    const auto fire = timer.fire;  // the timer may cancel itself
    if (timer.repeats)
      timer.due += timer.interval * std::max<Microseconds>(1, (now_ - timer.due) / timer.interval);
    else
      timers_.erase(timers_.begin() + static_cast<std::ptrdiff_t>(*next));
    fire();
    settle();
  }
  now_ = std::max(now_, end);  // what fired may have let more time pass
}

}  // namespace sim
