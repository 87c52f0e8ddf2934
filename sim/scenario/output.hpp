// How a run is printed: as text for people, or as one JSON object a line for programs. Nothing of a
// phone; leaves out expectations that failed, which go to standard error.
#pragma once
#include <ostream>

#include "sim/core/trace.hpp"
#include "sim/scenario/recorder.hpp"

namespace sim::scenario {

enum class Format : std::uint8_t { Text, Json };

class Output {
 public:
  Output(std::ostream& out, Format format) : out_(out), format_(format) {}
  void command(const std::string& echo);
  void effect(Microseconds time, const std::string& process, const std::string& call);
  void result(bool answer);

  // From now on effects are coloured by what became of the call: those of `shown`, in place of what
  // effect() gets.
  void colour() { coloured_ = true; }
  bool isColoured() const { return coloured_; }
  void shown(const std::vector<Row>& rows);
  // Nothing is printed while muted.
  void mute(bool muted) { muted_ = muted; }

 private:
  std::ostream& out_;
  Format format_;
  bool coloured_ = false;
  bool muted_ = false;
};

// Seconds with two decimals, rounded to the nearest, halves up.
std::string shownTime(Microseconds time);

}  // namespace sim::scenario
