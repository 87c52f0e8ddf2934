// A device process as its parent holds it: spawned, spoken to in lines, ended. Nothing of a phone;
// leaves out what the lines say.
#pragma once
#include <sys/types.h>

#include <string>
#include <vector>

namespace sim::serve {

// Used by one thread.
class DeviceProcessHandle {
 public:
  // The program and its arguments. Throws std::system_error.
  explicit DeviceProcessHandle(const std::vector<std::string>& command);
  ~DeviceProcessHandle();  // ends it if it still runs
  DeviceProcessHandle(const DeviceProcessHandle&) = delete;
  DeviceProcessHandle& operator=(const DeviceProcessHandle&) = delete;

  // Writes as much of `text` as fits within a tenth of a second, and takes it away from there.
  void write(std::string& text);
  // Whole lines that have come; waits up to a tenth of a second for them if it may. Throws
  // std::runtime_error if the process has ended, which tells how: "signal 11 (Segmentation fault)".
  std::vector<std::string> read(bool mayWait);

 private:
  std::string howItEnded();

  pid_t process_ = 0;
  int descriptor_ = -1;  // the other end of its standard input and output
  std::string unread_;
};

}  // namespace sim::serve
