#include "sim/foundation/plist_file.hpp"

#include <algorithm>
#include <cstdlib>
#include <cstring>
#include <map>
#include <optional>

namespace sim {

namespace {

// The parser recurses: what would exhaust the stack or the memory is found out before.
constexpr int kDeepest = 256;
constexpr std::size_t kLargestFile = std::size_t{64} << 20;
constexpr std::size_t kMostObjects = 50'000;

// ---- XML

// The position behind a construct in which tags do not count, or `at` if none begins there.
std::size_t skipped(const std::string& xml, std::size_t at) {
  static const std::pair<std::string, std::string> kinds[] = {
      {"<!--", "-->"}, {"<![CDATA[", "]]>"}, {"<?", "?>"}};
  for (const auto& [begin, end] : kinds) {
    if (xml.compare(at, begin.size(), begin) != 0) continue;
    const auto close = xml.find(end, at + begin.size());
    return close == std::string::npos ? xml.size() : close + end.size();
  }
  return at;
}

bool xmlIsShallow(const std::string& xml) {
  int depth = 0;
  for (std::size_t at = xml.find('<'); at != std::string::npos; at = xml.find('<', at)) {
    if (const auto behind = skipped(xml, at); behind != at) {
      at = behind;
      continue;
    }
    const auto end = std::min(xml.find('>', at), xml.size());
    const auto starts = [&](const char* tag) {
      return xml.compare(at, std::string(tag).size(), tag) == 0;
    };
    const bool empty = end > at && end < xml.size() && xml[end - 1] == '/';
    if ((starts("<array") || starts("<dict")) && !empty && ++depth > kDeepest) return false;
    if (starts("</array") || starts("</dict")) depth = std::max(0, depth - 1);
    at = end;
  }
  return true;
}

// ---- The binary form: objects, a table of their offsets, and a trailer

class BinaryPlist {
 public:
  explicit BinaryPlist(const std::string& bytes) : bytes_(bytes) {
    constexpr std::size_t kTrailer = 32;
    if (bytes.size() < kTrailer) return;
    const std::size_t trailer = bytes.size() - kTrailer;
    offsetSize_ = byte(trailer + 6);
    referenceSize_ = byte(trailer + 7);
    objects_ = number(trailer + 8, 8).value_or(0);
    root_ = number(trailer + 16, 8).value_or(0);
    table_ = number(trailer + 24, 8).value_or(0);
  }

  // Whether it can be read: what is broken is left to the parser.
  bool isModest() {
    try {
      return measure(root_, 0) <= kMostObjects;
    } catch (const TooDeep&) {
      return false;
    }
  }

 private:
  struct TooDeep {};

  unsigned byte(std::size_t at) const { return static_cast<unsigned char>(bytes_[at]); }
  // A big-endian number; nothing if it lies outside.
  std::optional<std::uint64_t> number(std::uint64_t at, unsigned size) const {
    if (size == 0 || size > 8 || at > bytes_.size() || bytes_.size() - at < size)
      return std::nullopt;
    std::uint64_t value = 0;
    for (unsigned i = 0; i < size; ++i) value = value << 8 | byte(at + i);
    return value;
  }

  // The references that follow a container's marker; how many there are and where they begin.
  struct References {
    std::uint64_t first = 0;
    std::uint64_t count = 0;
  };
  References references(std::uint64_t at) const {
    constexpr unsigned kArray = 0xa, kSet = 0xc, kDictionary = 0xd, kMoreFollows = 0xf;
    const auto marker = number(at, 1);
    if (!marker) return {};
    const unsigned kind = static_cast<unsigned>(*marker) >> 4;
    if (kind != kArray && kind != kSet && kind != kDictionary) return {};
    References found{at + 1, *marker & 0xf};
    if (found.count == kMoreFollows) {
      const auto size = number(at + 1, 1);
      const unsigned width = size ? 1u << (*size & 3) : 0;
      const auto count = number(at + 2, width);
      if (!count) return {};
      found = {at + 2 + width, *count};
    }
    if (kind == kDictionary) found.count *= 2;  // keys, then values
    // Not more than the file can hold.
    if (referenceSize_ == 0 || found.count > bytes_.size() / referenceSize_) return {};
    return found;
  }

  // How many objects one grows to.
  std::uint64_t measure(std::uint64_t index, int depth) {
    if (depth > kDeepest) throw TooDeep();
    if (index >= objects_) return 0;
    if (const auto known = sizes_.find(index); known != sizes_.end()) {
      if (depth + heights_[index] > kDeepest) throw TooDeep();
      return known->second;
    }
    const auto at = number(table_ + index * offsetSize_, offsetSize_);
    std::uint64_t size = 1;
    int height = 0;
    const References inside = at ? references(*at) : References{};
    for (std::uint64_t i = 0; i < inside.count; ++i) {
      const auto child = number(inside.first + i * referenceSize_, referenceSize_);
      if (!child) break;
      size = std::min<std::uint64_t>(size + measure(*child, depth + 1), kMostObjects + 1);
      height = std::max(height, heights_[*child] + 1);
    }
    sizes_[index] = size;
    heights_[index] = height;
    return size;
  }

  const std::string& bytes_;
  unsigned offsetSize_ = 0;
  unsigned referenceSize_ = 0;
  std::uint64_t objects_ = 0;
  std::uint64_t root_ = 0;
  std::uint64_t table_ = 0;
  std::map<std::uint64_t, std::uint64_t> sizes_;
  std::map<std::uint64_t, int> heights_;
};

}  // namespace

std::vector<plist_t> elementsOf(plist_t array) {
  std::vector<plist_t> elements;
  plist_array_iter iterator = nullptr;
  plist_array_new_iter(array, &iterator);
  for (;;) {
    plist_t element = nullptr;
    plist_array_next_item(array, iterator, &element);
    if (!element) break;
    elements.push_back(element);
  }
  std::free(iterator);
  return elements;
}

namespace {

// A zero byte ends the texts that the parser's own functions make, so that what holds one could not
// be written again.
bool holdsZeroByte(plist_t node) {
  switch (plist_get_node_type(node)) {
    case PLIST_STRING: {
      std::uint64_t length = 0;
      const char* text = plist_get_string_ptr(node, &length);
      return text && std::strlen(text) != length;
    }
    case PLIST_ARRAY:
      return std::ranges::any_of(elementsOf(node), holdsZeroByte);
    case PLIST_DICT: {
      plist_dict_iter iterator = nullptr;
      plist_dict_new_iter(node, &iterator);
      bool found = false;
      for (plist_t value = nullptr; !found;) {
        plist_dict_next_item(node, iterator, nullptr, &value);
        if (!value) break;
        found = holdsZeroByte(value);
      }
      std::free(iterator);
      return found;
    }
    default:
      return false;
  }
}

}  // namespace

PlistNode parsePropertyList(const std::string& bytes) {
  if (bytes.size() > kLargestFile) return {};
  plist_t parsed = nullptr;
  const auto size = static_cast<std::uint32_t>(bytes.size());
  const bool binary = bytes.starts_with("bplist");
  if (binary) {
    if (!BinaryPlist(bytes).isModest()) return {};
    plist_from_bin(bytes.data(), size, &parsed);
  } else if (bytes.find("<plist") != std::string::npos) {
    if (xmlIsShallow(bytes)) plist_from_xml(bytes.data(), size, &parsed);
  }
  PlistNode root(parsed);
  if (root && holdsZeroByte(root.get())) root.reset();
  // The binary form can hold a key twice, and objects of archives: as XML it cannot.
  return root && binary ? parsePropertyList(toXml(root.get())) : std::move(root);
}

std::string toXml(plist_t node) {
  char* xml = nullptr;
  std::uint32_t length = 0;
  plist_to_xml(node, &xml, &length);
  const std::string text(xml ? xml : "", xml ? length : 0);
  std::free(xml);
  return text;
}

}  // namespace sim
