// Property lists in the device's file system: XML and binary ones are read, XML is written. Stands
// in for initWithContentsOfFile: and writeToFile:atomically:; leaves out owners and modes of files.
#pragma once
#include "sim/core/files.hpp"
#include "sim/foundation/dictionary.hpp"
#include "sim/foundation/plist_file.hpp"

namespace sim {

// The property list in a file of the device's, null as above. Borrowed: kept with the file until
// that changes.
plist_t propertyListIn(const Files& files, const std::string& path);

// The dictionary at a path of the device; null if there is none, it cannot be read, or it is no
// property list with a dictionary as its root.
Ref<NSDictionary> readPropertyList(Process& process, const std::string& devicePath);

// The same objects as nodes, and the other way round. Null if the object, or something within it,
// is nothing that a property list can hold.
PlistNode toPropertyListNode(const Object& object);
Ref<Object> fromPropertyListNode(Process& process, plist_t node);

// Writes a dictionary as XML, the whole file at once. False if that fails, or if the settings file
// is read-only.
bool writePropertyListFile(Device& device, const std::string& devicePath, plist_t root);
// The same for a dictionary object. Also false if a value is none that a property list can hold.
bool writePropertyList(const NSDictionary& dictionary, const std::string& devicePath);

}  // namespace sim
