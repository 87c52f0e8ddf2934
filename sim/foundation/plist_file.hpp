// Property lists as bytes: the two forms that the platform reads, XML and binary.
#pragma once
#include <plist/plist.h>

#include <memory>
#include <string>
#include <vector>

namespace sim {

struct FreePlistNode {
  void operator()(void* node) const { plist_free(node); }
};
using PlistNode = std::unique_ptr<void, FreePlistNode>;

// Null if the bytes are no property list, are larger than 64 MiB, nest more than 256 deep, hold a
// text with a zero byte, or (as the binary form can refer to one object from many places) would
// grow beyond 50,000 objects.
PlistNode parsePropertyList(const std::string& bytes);

// An array's elements, borrowed. By the parser's index each would be looked for from the first on.
std::vector<plist_t> elementsOf(plist_t array);

// The XML form; empty if there is none.
std::string toXml(plist_t node);

}  // namespace sim
