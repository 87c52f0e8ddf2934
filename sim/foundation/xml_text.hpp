// What comes before an XML property list's first element: byte order mark, encoding, prolog; and
// the characters that XML cannot hold though property lists do. Stands in for the first part of
// CoreFoundation's reader; leaves out encodings but four, and what a DTD declares.
#pragma once
#include <optional>
#include <string>

namespace sim {

// The bytes from the first element on, in UTF-8 (which is not checked). White space, comments,
// processing instructions and a DTD are skipped, in any order. Nothing if no element begins there,
// or if the encoding is none of UTF-8, UTF-16 with a byte order mark, ISO-8859-1 and US-ASCII.
std::optional<std::string> fromFirstElement(const std::string& bytes);

// The platform's parser reads control characters and U+FFFE and U+FFFF like any others; a reader of
// XML refuses them. Shielded, they pass through one. A zero byte is not shielded.
std::string shielded(const std::string& xml);
std::string unshielded(const std::string& text);

}  // namespace sim
