// A device process as its parent holds it: spawned, spoken to in lines, ended. Nothing of a phone;
// leaves out what the lines say.
#pragma once
#include <sys/types.h>

#include <string>
#include <vector>

namespace sim::serve {

// Used by one thread at a time.
class DeviceProcessHandle {
 public:
  // The program's path and its arguments. The process ends with the thread that calls this. Throws
  // std::system_error if there can be no process; one without a program ends with status 127.
  explicit DeviceProcessHandle(const std::vector<std::string>& command);
  ~DeviceProcessHandle();  // ends it if it still runs
  DeviceProcessHandle(const DeviceProcessHandle&) = delete;
  DeviceProcessHandle& operator=(const DeviceProcessHandle&) = delete;

  // Writes as much of `text` as fits, takes that away from there, and answers whole lines that have
  // come; waits up to a tenth of a second for either if it may. Throws std::runtime_error if the
  // process has ended, which tells how: "signal 11 (Segmentation fault)".
  std::vector<std::string> exchange(std::string& text, bool mayWait);

 private:
  int end();  // its status, as wait(2) has it

  pid_t process_ = 0;    // 0: ended
  int descriptor_ = -1;  // the other end of its standard input and output
  std::string unread_;
};

}  // namespace sim::serve
