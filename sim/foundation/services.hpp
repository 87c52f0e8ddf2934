// NSURL, and NSFileManager beside it in services.cpp: addresses as the platform passes them around,
// and whether a file is there. Leaves out the parts of an address, and everything that changes
// files.
#pragma once
#include "sim/core/process.hpp"

namespace sim {

class NSURL final : public Object {
 public:
  NSURL(Process& process, std::string address) : Object(process), text(std::move(address)) {}
  const std::string text;
};

}  // namespace sim
