// How calls read in traces. Stands in for what somebody with a debugger on the phone would write
// down; leaves out addresses, and most of what is inside of objects.
#pragma once
#include "sim/core/class.hpp"

namespace sim {

// "-[SpringBoard launchApplicationWithIdentifier:"ID" suspended:NO]" or "notify_post("NAME")".
std::string described(const Invocation& invocation);

// One argument or result: "text", YES, 4, 0.36, nil, <NSDictionary>, <block>.
std::string described(Process& process, const Value& value);

}  // namespace sim
