// The simulated classes of Accounts and Social.
#pragma once
#include "sim/core/class_definition.hpp"

namespace sim {

ClassDefinition defineACAccountStore();
ClassDefinition defineACAccountType();
ClassDefinition defineACAccount();
ClassDefinition defineSLRequest();

}  // namespace sim
