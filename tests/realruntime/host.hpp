// The device around its processes: starts and ends them, lets one of them run at a time, and keeps
// the queue, the clock and the trace.
#pragma once
#include <sys/types.h>

#include <list>
#include <optional>
#include <string>
#include <vector>

#include "device.h"

namespace real {

using Words = std::vector<std::string>;
inline const std::string kSpringBoard = "com.apple.springboard";

class Host {
 public:
  // A fresh device with its own folder; `library` is loaded by every process.
  explicit Host(std::string library);
  ~Host();  // ends every process and removes the folder
  Host(const Host&) = delete;
  Host& operator=(const Host&) = delete;

  bool runs(const std::string& app) { return find(app) != processes_.end(); }
  void boot();
  void start(const std::string& app);  // running, processDidLaunch:, its library, its start-up
  void end(const std::string& app);
  // One callback of a process; the answer that its caller got, if it asks.
  std::optional<bool> tell(const std::string& app, const Words& words);
  // Works the queue off.
  void drain();
  void advance(int64_t microseconds);
  // In real time: lets the processes run until the trace holds a line with this text; false if that
  // takes longer than half a minute.
  bool await(const std::string& text);
  // Where a path of the device lies on the host.
  std::string path(const std::string& devicePath) const { return device->root + devicePath; }

 private:
  struct Process {
    std::string identifier;
    int number;
    pid_t pid;
    int channel;
    int64_t due = -1;  // its next timer
    int64_t timer = 0;
  };
  using Position = std::list<Process>::iterator;
  Position find(const std::string& app);
  void launch(const std::string& app);
  void forget(Position process);
  void crashed(Position process);
  void handle(const Queued& step);
  void printTrace();

  std::string library_;
  std::list<Process> processes_;  // in the order in which they started
  int started_ = 0;
  std::string recent_;  // in real time, the trace since what was last waited for
};

void copyText(char* to, const std::string& text, std::size_t room = kText);

}  // namespace real
