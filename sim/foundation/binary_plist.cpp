#include "sim/foundation/binary_plist.hpp"

#include <algorithm>
#include <bit>
#include <map>
#include <optional>

namespace sim {

namespace {

// Objects, a table of their offsets, and a trailer.
class BinaryPlist {
 public:
  BinaryPlist(const std::string& bytes, std::uint64_t most, int deepest)
      : bytes_(bytes), most_(most), deepest_(deepest) {
    constexpr std::size_t kTrailer = 32;
    if (bytes.size() < kTrailer) return;
    const std::size_t trailer = bytes.size() - kTrailer;
    offsetSize_ = byte(trailer + 6);
    referenceSize_ = byte(trailer + 7);
    objects_ = number(trailer + 8, 8).value_or(0);
    root_ = number(trailer + 16, 8).value_or(0);
    table_ = number(trailer + 24, 8).value_or(0);
  }

  bool canBeKept() {
    try {
      return measure(root_, 0) <= most_;
    } catch (const CannotBeKept&) {
      return false;
    }
  }

 private:
  struct CannotBeKept {};
  enum Kind : unsigned {
    kInteger = 0x1,
    kDate = 0x3,
    kAscii = 0x5,
    kUnicode = 0x6,
    kArray = 0xa,
    kSet = 0xc,
    kDictionary = 0xd
  };

  unsigned byte(std::size_t at) const { return static_cast<unsigned char>(bytes_[at]); }
  // A big-endian number; nothing if it lies outside.
  std::optional<std::uint64_t> number(std::uint64_t at, unsigned size) const {
    if (size == 0 || size > 8 || at > bytes_.size() || bytes_.size() - at < size)
      return std::nullopt;
    std::uint64_t value = 0;
    for (unsigned i = 0; i < size; ++i) value = value << 8 | byte(at + i);
    return value;
  }
  unsigned kind(std::uint64_t at) const {
    return static_cast<unsigned>(number(at, 1).value_or(0)) >> 4;
  }

  // What follows an object's marker: how many items there are and where they begin.
  struct Items {
    std::uint64_t first = 0;
    std::uint64_t count = 0;
  };
  // None if they do not fit into the file.
  Items items(std::uint64_t at, std::uint64_t each) const {
    constexpr unsigned kMoreFollows = 0xf;
    const auto marker = number(at, 1);
    if (!marker) return {};
    Items found{at + 1, *marker & 0xf};
    if (found.count == kMoreFollows) {
      const auto size = number(at + 1, 1);
      const unsigned width = size ? 1u << (*size & 3) : 0;
      const auto count = number(at + 2, width);
      if (!count) return {};
      found = {at + 2 + width, *count};
    }
    if (each == 0 || found.first > bytes_.size() ||
        found.count > (bytes_.size() - found.first) / each)
      return {};
    return found;
  }

  Items references(std::uint64_t at) const {
    const unsigned container = kind(at);
    if (container == kDictionary) {  // keys, then values
      Items pairs = items(at, std::uint64_t{2} * referenceSize_);
      pairs.count *= 2;
      return pairs;
    }
    return container == kArray || container == kSet ? items(at, referenceSize_) : Items{};
  }

  bool asciiIsKept(std::uint64_t at) const {
    const Items text = items(at, 1);
    return bytes_.substr(text.first, text.count).find('\0') == std::string::npos;
  }

  bool unicodeIsKept(std::uint64_t at) const {
    const Items text = items(at, 2);
    bool first = false;  // half of a pair came before
    for (std::uint64_t i = 0; i < text.count; ++i) {
      const auto unit = number(text.first + i * 2, 2).value_or(0);
      const bool second = unit >= 0xdc00 && unit < 0xe000;
      if (unit == 0 || second != first) return false;
      first = unit >= 0xd800 && unit < 0xdc00;
    }
    return !first;
  }

  bool integerIsKept(std::uint64_t at) const {
    constexpr unsigned kSixteenBytes = 0x14;
    return number(at, 1) != kSixteenBytes || number(at + 1, 8).value_or(0) == 0;
  }

  bool dateIsKept(std::uint64_t at) const {
    constexpr double kYear0 = -63145526400, kYear10000 = 252455616000;  // seconds from 2001 on
    const auto seconds = std::bit_cast<double>(number(at + 1, 8).value_or(0));
    return seconds >= kYear0 && seconds < kYear10000;
  }

  bool isKept(std::uint64_t at) const {
    switch (kind(at)) {
      case kInteger:
        return integerIsKept(at);
      case kDate:
        return dateIsKept(at);
      case kAscii:
        return asciiIsKept(at);
      case kUnicode:
        return unicodeIsKept(at);
      case kSet:  // belongs into no property list
        return false;
      default:
        return true;
    }
  }

  // How many objects one grows to.
  std::uint64_t measure(std::uint64_t index, int depth) {
    if (depth > deepest_) throw CannotBeKept();
    if (index >= objects_) return 0;
    if (const auto known = sizes_.find(index); known != sizes_.end()) {
      if (depth + heights_[index] > deepest_) throw CannotBeKept();
      return known->second;
    }
    const auto at = number(table_ + index * offsetSize_, offsetSize_);
    if (at && !isKept(*at)) throw CannotBeKept();
    std::uint64_t size = 1;
    int height = 0;
    const Items inside = at ? references(*at) : Items{};
    for (std::uint64_t i = 0; i < inside.count; ++i) {
      const auto child = number(inside.first + i * referenceSize_, referenceSize_);
      if (!child) break;
      size = std::min<std::uint64_t>(size + measure(*child, depth + 1), most_ + 1);
      height = std::max(height, heights_[*child] + 1);
    }
    sizes_[index] = size;
    heights_[index] = height;
    return size;
  }

  const std::string& bytes_;
  const std::uint64_t most_;
  const int deepest_;
  unsigned offsetSize_ = 0;
  unsigned referenceSize_ = 0;
  std::uint64_t objects_ = 0;
  std::uint64_t root_ = 0;
  std::uint64_t table_ = 0;
  std::map<std::uint64_t, std::uint64_t> sizes_;
  std::map<std::uint64_t, int> heights_;
};

}  // namespace

bool binaryPlistCanBeKept(const std::string& bytes, std::uint64_t most, int deepest) {
  return BinaryPlist(bytes, most, deepest).canBeKept();
}

}  // namespace sim
