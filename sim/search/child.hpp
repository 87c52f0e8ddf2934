// A process of the host's own that does part of a search: what it meets cannot end the search.
// Nothing of a phone; leaves out limits of memory, which the host has to set.
#pragma once
#include <sys/types.h>

#include <functional>
#include <string>
#include <vector>

namespace sim::search {

// Sends a message to the parent.
using Tell = std::function<void(const std::string&)>;

class Child {
 public:
  // Forks; the child runs `work` and ends. `work` must not return from main.
  explicit Child(const std::function<void(const Tell&)>& work);
  ~Child();  // ends it if it still runs
  Child(const Child&) = delete;
  Child& operator=(const Child&) = delete;

  int descriptor() const { return read_; }
  // Messages that have come, waiting for the first one. Empty once the child has ended.
  std::vector<std::string> messages();
  // After its end: how it died, as "signal 11"; empty if it ended as it should.
  std::string death();

 private:
  pid_t process_ = 0;
  int read_ = -1;
  std::string unread_;
  bool ended_ = false;
  std::string death_;
};

// Runs `work` in a child and waits for it: its messages, and how it died.
struct Outcome {
  std::vector<std::string> messages;
  std::string death;
};
Outcome isolated(const std::function<void(const Tell&)>& work);

// To be called by a child before each piece of work: one that takes this long hangs, and the child
// dies. 0 ends the watch.
constexpr unsigned kLongestPiece = 60;
void expectEndWithin(unsigned seconds);

}  // namespace sim::search
