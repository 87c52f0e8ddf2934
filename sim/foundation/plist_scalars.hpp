// Numbers, dates and data as an XML property list writes them, and as strict as the platform's own
// parser is about their form. Leaves out years that have not four digits.
#pragma once
#include <cstdint>
#include <string>
#include <string_view>

#include "sim/foundation/plist_file.hpp"

namespace sim {

// What XML takes for blanks.
inline constexpr std::string_view kXmlSpace = " \t\r\n";

// The node for an element's text; null if the text is malformed or empty, or its value cannot be
// held (integers beyond 64 bits). Empty data is data.
PlistNode integerNode(const std::string& text);
PlistNode realNode(const std::string& text);
PlistNode dateNode(const std::string& text);  // years 0 to 9999
PlistNode dataNode(const std::string& text);

// An integer's node holds 64 bits and whether they are unsigned.
PlistNode unsignedNode(std::uint64_t value);
bool isNegative(plist_t integer);

}  // namespace sim
