// A session: the device process of one listener, what it is to play and what it says. Watches the
// time, and starts another device process after one that died. Nothing of a phone; leaves out what
// the lines mean, but for the end of a play.
#pragma once
#include <chrono>
#include <condition_variable>
#include <mutex>
#include <optional>
#include <string>
#include <vector>

#include "sim/serve/device_process_handle.hpp"

namespace sim::serve {

// Its device process ends with it.
class Session {
 public:
  // The command is what starts a device process, which is ended when it is silent after having
  // played for so many seconds.
  Session(const std::vector<std::string>& command, int longestPlay)
      : command_(command), longestPlay_(longestPlay) {}

  // Text for the device process, a line. Takes the place of one that still waits. Any thread.
  void play(std::string line);
  // What the device process says next, JSON objects; waits up to a second for it. If it has died
  // the last of them has the member "gone". The listener's thread.
  std::vector<std::string> hear();

 private:
  std::mutex mutex_;
  std::condition_variable news_;
  std::string waiting_;  // under the mutex; empty: none

  // The listener's thread alone uses these.
  const std::vector<std::string> command_;
  const std::chrono::seconds longestPlay_;
  std::optional<DeviceProcessHandle> device_;
  bool playing_ = false;
  std::string unsent_;  // of what is being played
  std::chrono::steady_clock::time_point deadline_;
};

}  // namespace sim::serve
