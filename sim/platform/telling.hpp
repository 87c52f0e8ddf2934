// What the platform passes where it mostly passes nil: with `arguments telling`, objects, so that a
// hook that passes nothing on is found out.
#pragma once
#include "sim/core/process.hpp"

namespace sim {

// A new dictionary, autoreleased, or nil.
Value optionsArgument(Process& process);
// A new object, autoreleased, or nil.
Value objectArgument(Process& process);

}  // namespace sim
