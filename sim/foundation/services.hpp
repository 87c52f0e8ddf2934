// Addresses as the platform passes them around.
#pragma once
#include "sim/core/process.hpp"

namespace sim {

class NSURL final : public Object {
 public:
  NSURL(Process& process, std::string address) : Object(process), text(std::move(address)) {}
  const std::string text;
};

}  // namespace sim
