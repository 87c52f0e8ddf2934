// Writes down what happens on a device, call inside of call, for those who show it. Nothing of a
// phone; leaves out what the device looks like afterwards (sim/show/shown_state.hpp).
#pragma once
#include <nlohmann/json_fwd.hpp>
#include <vector>

#include "sim/core/device.hpp"

namespace sim::scenario {

// One entry, in the order in which they began. Its JSON has `time` (of the virtual clock, in
// microseconds), `process`, `kind`, `call`, `by` (of effects), `taken` (of hooks: the call never
// reached the platform), `answer` (of calls that have one), and `parent`, the index of the entry
// that it happened inside of, or -1.
struct Row {
  Microseconds time;
  CallTree::Entry entry;
  std::string answer;
  std::ptrdiff_t parent;
  bool passedOn = false;
};
nlohmann::ordered_json asJson(const Row& row);

class Recorder final : public CallTree {
 public:
  // The clock is borrowed, as is all that is listened to.
  explicit Recorder(const Clock& clock) : clock_(clock) {}

  // What came since the last call.
  std::vector<Row> take();

  void enter(Entry entry) override;
  void answered(std::string answer) override;
  void passedOn(const std::string& process, std::size_t outward) override;
  void leave() override;

 private:
  const Clock& clock_;
  std::vector<Row> rows_;
  std::vector<std::size_t> open_;  // indices, the innermost last
};

}  // namespace sim::scenario
