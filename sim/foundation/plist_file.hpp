// Property lists as bytes: the two forms that the platform reads, XML and binary. Stands in for
// CoreFoundation's reader and writer; leaves out old-style lists.
#pragma once
#include <plist/plist.h>

#include <filesystem>
#include <memory>
#include <string>
#include <vector>

namespace sim {

struct FreePlistNode {
  void operator()(void* node) const { plist_free(node); }
};
using PlistNode = std::unique_ptr<void, FreePlistNode>;

// Null if the bytes are no property list by the platform's rules, are larger than 64 MiB, nest more
// than 256 deep, hold a value that could not be written again as it is (a text with a zero byte, a
// date after the year 9999, a set), or (as the binary form can refer to one object from many
// places) would grow beyond 50,000 objects. Old-style property lists, which the platform tries too,
// are left out.
PlistNode parsePropertyList(const std::string& bytes);

// The property list in a file of the host's; also null if there is no such file, or a folder in its
// place. Read again only once the file has changed.
std::shared_ptr<void> readPropertyListFile(const std::filesystem::path& path);
// An array's elements, borrowed. By the parser's index each would be looked for from the first on.
std::vector<plist_t> elementsOf(plist_t array);
// A dictionary's keys and values in the file's order, the values borrowed; a key that is none is
// left out with its value.
std::vector<std::pair<std::string, plist_t>> entriesOf(plist_t dictionary);

// The XML form; empty if there is none.
std::string toXml(plist_t node);

}  // namespace sim
