// The XML form of property lists, read as strictly as the platform's own parser reads it. Stands in
// for CoreFoundation's, over Expat; leaves out the old-style form that it tries after a failure.
#pragma once
#include "sim/foundation/plist_file.hpp"

namespace sim {

// Null if there is anything wrong with the file up to the end of its root. Nothing behind that is
// looked at. An element may lie within `deepest` others.
PlistNode parseXmlPropertyList(const std::string& bytes, std::size_t deepest);

}  // namespace sim
