// The platform's C functions, a list for each library that exports them. Stands in for their tables
// of exports; leaves out what the library does not import, an unknown import being an error.
#pragma once
#include "sim/core/bind.hpp"

namespace sim {

using Functions = std::vector<NativeCode>;

Functions runtimeFunctions();  // libobjc
Functions systemFunctions();   // libSystem: dyld, libdispatch, libnotify, the C library
Functions coreFoundationFunctions();
Functions substrateFunctions();
Functions preferenceFunctions();  // CFPreferences
Functions frameworkFunctions();   // found with dlsym: MediaRemote, AudioToolbox, reachability

NativeCode effect(NativeCode code);
NativeCode effect(NativeCode code, Describe describe);

}  // namespace sim
