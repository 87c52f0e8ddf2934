// The faults that can be injected into a run, each for the whole of it. Stand in for missing
// classes, busy daemons and full memory; leave out answers that are wrong rather than missing.
#pragma once
#include <cstdint>
#include <set>
#include <string>
#include <vector>

namespace sim::inject {

enum class FaultKind : std::uint8_t {
  Nothing,      // a call of the library's is answered with nothing, NO or a failure
  Another,      // an initialiser answers another object than the one it was sent to
  LateTimers,   // every timer fires so many milliseconds late
  Doubled,      // every notification arrives so many times
  LateNotices,  // every notification arrives so many milliseconds late
  LostNotices,  // no notification arrives
  AlertGoes,    // the system takes every alert away, in the way of that number
  Death,        // a process dies before that step of the queue, and is started again
  CutSettings,  // before it is read, the settings file is cut off after so many bytes
};

struct InjectedFault {
  FaultKind kind = FaultKind::Nothing;
  std::string target{};  // the call, as traces show it, or the process
  long number = 0;

  std::string name() const;
};

// Rules that the faults excuse: the platform no longer does its own part in them.
std::set<std::string> excusedRules(const std::vector<InjectedFault>& faults);

std::string names(const std::vector<InjectedFault>& faults);

}  // namespace sim::inject
