// Which call happened inside of which other, and what became of it: for those who show a run.
// Stands in for nothing on the phone; leaves out who listens (sim/show/recorder.hpp). Without a
// listener nothing is described, and a run costs what it did.
#pragma once
#include <cstddef>
#include <cstdint>
#include <string>

namespace sim {

class Device;
class Process;

class CallTree {
 public:
  enum class Kind : std::uint8_t {
    Effect,    // a line of the trace
    Call,      // any other message or function call
    Hook,      // a call arrives at what the library has replaced
    Callback,  // other code of the library's that the platform calls
    Delivery,  // a Darwin notification reaches the library
    Timer,     // a timer of the process fires
    Started,   // the process begins: all that it does as it comes up
    Ended,     // it has ended
  };
  // Who made a call: the library itself, the library handing on a call that it had hooked, or the
  // platform.
  enum class By : std::uint8_t { Library, Passed, Platform };
  struct Entry {
    Kind kind;
    std::string process;  // its identifier
    std::string what;     // as traces have it
    By by = By::Platform;
  };

  virtual ~CallTree() = default;
  // What comes until the matching leave() happens inside of it.
  virtual void enter(Entry entry) = 0;
  // The innermost one answered that; empty: nothing worth showing.
  virtual void answered(std::string answer) = 0;
  // A hook of that process handed its call on: the innermost one but `outward`.
  virtual void passedOn(const std::string& process, std::size_t outward) = 0;
  virtual void leave() = 0;
};

// From here to the end of the scope, if anybody listens. `describe` is asked for the text only
// then.
class CallSpan {
 public:
  template <class Describe>
  CallSpan(CallTree* tree, CallTree::Kind kind, const std::string& process, CallTree::By by,
           const Describe& describe)
      : tree_(tree) {
    if (tree_) tree_->enter({kind, process, describe(), by});
  }
  CallSpan(CallTree* tree, CallTree::Kind kind, const std::string& process, const char* what)
      : CallSpan(tree, kind, process, CallTree::By::Platform, [&] { return std::string(what); }) {}
  ~CallSpan() {
    if (tree_) tree_->leave();
  }
  CallSpan(const CallSpan&) = delete;
  CallSpan& operator=(const CallSpan&) = delete;

 private:
  CallTree* tree_;
};

}  // namespace sim
