// Property lists in the device's file system: XML and binary ones are read, XML is written.
#pragma once
#include "sim/foundation/dictionary.hpp"

namespace sim {

// The dictionary at a path of the device; null if there is none, it cannot be read, or it is no
// property list with a dictionary as its root.
Ref<NSDictionary> readPropertyList(Process& process, const std::string& devicePath);

// Writes to an auxiliary file and renames it. False if that fails, if the settings file is
// read-only, or if a value is none that a property list can hold.
bool writePropertyList(const NSDictionary& dictionary, const std::string& devicePath);

}  // namespace sim
