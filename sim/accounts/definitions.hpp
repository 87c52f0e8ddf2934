// The simulated classes of Accounts and Social: a function each, for sim/platform/class_list.cpp.
// Leaves out the classes themselves, which stand in accounts.cpp.
#pragma once
#include "sim/core/class_definition.hpp"

namespace sim {

ClassDefinition defineACAccountStore();
ClassDefinition defineACAccountType();
ClassDefinition defineACAccount();
ClassDefinition defineSLRequest();

}  // namespace sim
