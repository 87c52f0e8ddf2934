// The fix-ups of an image, as small programs of opcodes: which pointers move with the image, and
// which are set to imported symbols. Stands in for that part of dyld; leaves out the opcodes of
// later systems, which are errors.
#pragma once
#include "sim/guest/byte_reader.hpp"

namespace sim::guest {

enum class BindKind : std::uint8_t { Regular, Weak, Lazy };

// Each adds to the image, whose segments are known. Throws MachOError for anything but complete,
// known opcodes whose targets are pointers in writable segments.
void readRebases(const ByteReader& opcodes, Slice slice, MachOImage& image);
void readBinds(const ByteReader& opcodes, BindKind kind, Slice slice, MachOImage& image);

}  // namespace sim::guest
