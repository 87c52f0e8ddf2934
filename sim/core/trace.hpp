// Where the effects of a run go. Stands in for nothing on the phone, where nobody keeps count;
// leaves out how a trace is printed, which sim/scenario/output.hpp does.
#pragma once
#include <cstdint>
#include <string>

namespace sim {

using Microseconds = std::int64_t;

class Trace {
 public:
  virtual ~Trace() = default;
  // A call that reached the platform, in `process`, at `time`.
  virtual void effect(Microseconds time, const std::string& process, const std::string& call) = 0;
  // Any other call, if they are wanted: no effect, and nothing that is expected.
  virtual void otherCall(Microseconds, const std::string&, const std::string&) {}
  // Whether calls that are no effects are wanted too.
  virtual bool wantsAllCalls() const { return false; }
};

// Texts and numbers as traces show them.
std::string quoted(const std::string& text);
std::string shownNumber(double value);

}  // namespace sim
