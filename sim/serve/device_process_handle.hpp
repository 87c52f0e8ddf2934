// A device process as its parent holds it: spawned, spoken to in lines without ever waiting, ended.
// Nothing of a phone; leaves out what the lines say.
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

  // To be polled: the other end of the process's standard input and output.
  int descriptor() const { return descriptor_; }
  // Writes as much of `text` as fits, and takes it away from there.
  void write(std::string& text);
  // Adds the whole lines that have come. False at the end of what the process says.
  bool read(std::vector<std::string>& lines);
  // After the end of what it says: how it ended, as "signal 11 (Segmentation fault)".
  std::string end();

 private:
  pid_t process_ = 0;
  int descriptor_ = -1;
  std::string unread_;
};

}  // namespace sim::serve
