// NSData and NSDate, which settings files may hold.
#pragma once
#include "sim/core/process.hpp"

namespace sim {

class NSData final : public Object {
 public:
  NSData(Process& process, std::string contents) : Object(process), bytes(std::move(contents)) {}
  bool equals(const Object& other) const override;
  const std::string bytes;
};

class NSDate final : public Object {
 public:
  NSDate(Process& process, std::int32_t reference) : Object(process), seconds(reference) {}
  bool equals(const Object& other) const override;
  const std::int32_t seconds;  // since 2001
};

Ref<NSData> makeData(Process& process, std::string bytes);
Ref<NSDate> makeDate(Process& process, std::int32_t seconds);

}  // namespace sim
