// A call of something that the library has replaced, watched from its start to its end: what was
// passed must reach the platform's own implementation, what that answers must come back.
//
// Stands in for what a phone does with a wrong argument or answer later, and seldom near to it.
// Left out: what an object holds. A hook may change the object that it is passed.
#pragma once
#include <optional>

#include "sim/core/class.hpp"

namespace sim {

class HookedCall {
 public:
  // `platform` is the platform's own implementation, `call` what the library is about to get. The
  // innermost call of its process until it is destroyed.
  HookedCall(const NativeCode& platform, const Invocation& call);
  ~HookedCall();
  HookedCall(const HookedCall&) = delete;
  HookedCall& operator=(const HookedCall&) = delete;

  bool isOf(const NativeCode& platform) const { return &platform == &platform_; }
  // The platform's own implementation has been reached. Fault if it was before, or with another
  // receiver or argument; the one argument that a hook may change is the name that is displayed.
  void reach(const Invocation& call);
  // That is what it answers.
  void answer(const Value& value) { answer_ = value; }
  // What the caller gets. Fault unless it is the platform's answer, or nothing where the platform's
  // own implementation was not reached.
  void check(const Value& result) const;

 private:
  Process& process_;
  const NativeCode& platform_;
  const std::string name_;  // as traces have it, without arguments
  const Address receiver_;  // 0 for C functions
  const std::vector<Value> passed_;
  bool reached_ = false;
  std::optional<Value> answer_;
};

}  // namespace sim
