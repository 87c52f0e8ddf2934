// Reads from a file's bytes; every read is checked. Nothing of a phone; leaves out big-endian
// files, but for the header of fat ones.
#pragma once
#include <fmt/format.h>

#include <cstring>
#include <span>

#include "sim/guest/macho_file.hpp"

namespace sim::guest {

class ByteReader {
 public:
  // `base` is where these bytes begin in the file, for messages.
  explicit ByteReader(std::span<const std::uint8_t> bytes, std::uint64_t base = 0)
      : bytes_(bytes), base_(base) {}

  std::uint64_t size() const { return bytes_.size(); }
  std::uint64_t base() const { return base_; }

  template <class T>
  T at(std::uint64_t offset) const {
    T value;
    const auto part = slice(offset, sizeof value, "a value").bytes_;
    std::memcpy(&value, part.data(), sizeof value);
    return value;
  }
  std::uint32_t bigEndian(std::uint64_t offset) const {
    return __builtin_bswap32(at<std::uint32_t>(offset));
  }
  ByteReader slice(std::uint64_t offset, std::uint64_t length, const char* what) const {
    if (offset > bytes_.size() || length > bytes_.size() - offset)
      throw MachOError(fmt::format("{} of {} bytes at offset {:#x} runs past the end", what, length,
                                   base_ + offset));
    return ByteReader(bytes_.subspan(offset, length), base_ + offset);
  }
  // A text of at most `most` bytes that a zero may end.
  std::string fixedText(std::uint64_t offset, std::uint64_t most) const {
    const auto part = slice(offset, most, "a name").bytes_;
    const auto* text = reinterpret_cast<const char*>(part.data());
    return std::string(text, strnlen(text, part.size()));
  }
  // A text that a zero must end.
  std::string text(std::uint64_t offset) const {
    if (offset >= bytes_.size())
      throw MachOError(fmt::format("a name at offset {:#x} runs past the end", base_ + offset));
    const auto part = bytes_.subspan(offset);
    const auto* end = static_cast<const std::uint8_t*>(std::memchr(part.data(), 0, part.size()));
    if (!end) throw MachOError(fmt::format("a name at offset {:#x} has no end", base_ + offset));
    return std::string(reinterpret_cast<const char*>(part.data()),
                       static_cast<std::size_t>(end - part.data()));
  }
  std::vector<std::uint8_t> copy() const { return {bytes_.begin(), bytes_.end()}; }

 private:
  std::span<const std::uint8_t> bytes_;
  std::uint64_t base_;
};

}  // namespace sim::guest
