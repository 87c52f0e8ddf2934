// A session: one device process, what it is to play, and what it has said since, for listeners that
// get it once and in order. A thread of its own moves the lines, watches the time, and starts
// another device process after one that died. Nothing of a phone; leaves out what the lines mean,
// but for the end of a play.
#pragma once
#include <chrono>
#include <condition_variable>
#include <cstdint>
#include <deque>
#include <memory>
#include <mutex>
#include <optional>
#include <string>
#include <thread>
#include <vector>

#include "sim/serve/device_process_handle.hpp"

namespace sim::serve {

struct SessionLimits {
  int play = 20;              // seconds, after which the device process is ended
  int withoutListener = 600;  // seconds, after which the session ends
};

// Used by any thread.
class Session {
 public:
  using Clock = std::chrono::steady_clock;

  // The command is what starts a device process.
  Session(std::vector<std::string> command, const SessionLimits& limits);
  ~Session();  // ends the device process
  Session(const Session&) = delete;
  Session& operator=(const Session&) = delete;

  // Text for the device process, a line. False if too many wait.
  bool play(const std::string& line);
  // A listener, for as long as the pointer is held: the number of the event that it gets next. That
  // is the one after `last`; after 0 the oldest that is kept, of the last play or older. Null if
  // what follows `last` is not kept any more, if two listen, or at the end.
  std::shared_ptr<std::uint64_t> listen(std::uint64_t last);
  // What the listener has not got, as server-sent events; waits up to a second for it. Nothing at
  // the end.
  std::optional<std::string> wait(std::uint64_t& next);
  // For how long nobody has listened.
  Clock::duration unheard();
  void end();
  bool hasEnded();

 private:
  void work();
  std::string nextPlay();
  void carryOut(std::string play);
  void add(const std::string& event);

  const std::vector<std::string> command_;
  const SessionLimits limits_;
  std::unique_ptr<DeviceProcessHandle> device_;  // of the session's own thread

  std::mutex mutex_;  // of all up to `ended_`
  std::condition_variable news_;
  std::deque<std::string> plays_;
  std::deque<std::string> events_;
  std::uint64_t first_ = 1;  // the number of the first of them
  std::vector<std::weak_ptr<std::uint64_t>> listeners_;
  Clock::time_point heard_ = Clock::now();
  bool ended_ = false;

  std::thread thread_;
};

}  // namespace sim::serve
