// NSData and NSDate, which settings files may hold. Leaves out everything that one could do with
// them: they are read, compared and written again.
#pragma once
#include "sim/core/process.hpp"
#include "sim/foundation/plist_file.hpp"

namespace sim {

class NSData final : public Object {
 public:
  NSData(Process& process, std::string contents) : Object(process), bytes(std::move(contents)) {}
  bool equals(const Object& other) const override;
  const std::string bytes;
};

// Nobody looks into dates: they stay as the file has them, whatever year that is.
class NSDate final : public Object {
 public:
  NSDate(Process& process, plist_t date) : Object(process), node(plist_copy(date)) {}
  bool equals(const Object& other) const override;
  const PlistNode node;
};

Ref<NSData> makeData(Process& process, std::string bytes);
Ref<NSDate> makeDate(Process& process, plist_t date);

}  // namespace sim
