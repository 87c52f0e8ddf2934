// What the platform passes where it mostly passes nil: with `arguments telling`, objects, so that a
// hook that passes nothing on is found out. Stands in for the options and objects that a phone
// would pass; leaves out what is in them.
#pragma once
#include "sim/core/process.hpp"

namespace sim {

// A new dictionary, autoreleased, or nil.
Value optionsArgument(Process& process);
// A new object, autoreleased, or nil.
Value objectArgument(Process& process);

}  // namespace sim
