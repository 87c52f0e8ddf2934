// The simulated classes of Foundation and CoreFoundation, one file each.
#pragma once
#include "sim/core/class_definition.hpp"

namespace sim {

ClassDefinition defineNSObject();
ClassDefinition defineBlock();
ClassDefinition defineNSString();

}  // namespace sim
