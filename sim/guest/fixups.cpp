#include "sim/guest/fixups.hpp"

namespace sim::guest {

namespace {

constexpr std::size_t kMostFixups = 1'000'000;

// Where the next fix-up goes, and the operands of opcodes.
class Program {
 public:
  Program(const ByteReader& opcodes, Slice slice, const MachOImage& image)
      : opcodes_(opcodes), slice_(slice), image_(image) {}

  bool atEnd() const { return next_ >= opcodes_.size(); }
  void stop() { next_ = opcodes_.size(); }
  std::uint8_t byte() { return opcodes_.at<std::uint8_t>(next_++); }

  std::uint64_t uleb() {
    std::uint64_t value = 0;
    for (unsigned shift = 0;; shift += 7) {
      const std::uint8_t part = byte();
      if (shift >= 64) fail("a number too long");
      value |= std::uint64_t{part & 0x7fu} << shift;
      if (!(part & 0x80)) return value;
    }
  }
  std::int64_t sleb() {
    std::uint64_t value = 0;
    for (unsigned shift = 0;;) {
      const std::uint8_t part = byte();
      if (shift >= 64) fail("a number too long");
      value |= std::uint64_t{part & 0x7fu} << shift;
      shift += 7;
      if (part & 0x80) continue;
      if ((part & 0x40) && shift < 64) value |= ~std::uint64_t{0} << shift;
      return static_cast<std::int64_t>(value);
    }
  }
  std::string text() {
    std::string text = opcodes_.text(next_);
    next_ += text.size() + 1;
    return text;
  }

  void setSegment(unsigned index, std::uint64_t offset) {
    if (index >= image_.segments.size()) fail("a segment that is not there");
    segment_ = &image_.segments[index];
    offset_ = offset;
  }
  void skip(std::uint64_t bytes) { offset_ += bytes; }

  // The address of the fix-up here.
  std::uint64_t target() const {
    if (!segment_) fail("a fix-up before any segment");
    // Skips are unsigned and may wrap, as the linkers use them to go back.
    const std::uint64_t offset =
        slice_ == Slice::armv7 ? static_cast<std::uint32_t>(offset_) : offset_;
    if (offset > segment_->size || segment_->size - offset < pointerSize(slice_))
      fail("a fix-up outside of its segment");
    if (!segment_->writable) fail("a fix-up in a segment that is not writable");
    return segment_->address + offset;
  }

  // Runs `one` up to `count` times, each a fix-up, skipping `gap` behind the pointer.
  template <class One>
  void repeat(std::uint64_t count, std::uint64_t gap, One one) {
    if (count > kMostFixups) fail("too many fix-ups");
    for (std::uint64_t i = 0; i < count; ++i) {
      one(target());
      if (++done_ > kMostFixups) fail("too many fix-ups");
      offset_ += gap + pointerSize(slice_);
    }
  }

  [[noreturn]] void fail(const std::string& what) const {
    throw MachOError(
        fmt::format("{} in the fix-ups before offset {:#x}", what, opcodes_.base() + next_));
  }

 private:
  const ByteReader& opcodes_;
  Slice slice_;
  const MachOImage& image_;
  std::uint64_t next_ = 0;
  const Segment* segment_ = nullptr;
  std::uint64_t offset_ = 0;
  std::size_t done_ = 0;
};

}  // namespace

void readRebases(const ByteReader& opcodes, Slice slice, MachOImage& image) {
  Program program(opcodes, slice, image);
  const auto one = [&](std::uint64_t address) { image.rebases.push_back(address); };
  while (!program.atEnd()) {
    const std::uint8_t opcode = program.byte();
    const unsigned operand = opcode & 0x0f;
    switch (opcode & 0xf0) {
      case 0x00:
        program.stop();
        break;
      case 0x10:
        if (operand != 1) program.fail("a rebase that is no pointer");
        break;
      case 0x20:
        program.setSegment(operand, program.uleb());
        break;
      case 0x30:
        program.skip(program.uleb());
        break;
      case 0x40:
        program.skip(std::uint64_t{operand} * pointerSize(slice));
        break;
      case 0x50:
        program.repeat(operand, 0, one);
        break;
      case 0x60:
        program.repeat(program.uleb(), 0, one);
        break;
      case 0x70: {
        const std::uint64_t gap = program.uleb();
        program.repeat(1, gap, one);
        break;
      }
      case 0x80: {
        const std::uint64_t count = program.uleb();
        const std::uint64_t gap = program.uleb();
        program.repeat(count, gap, one);
        break;
      }
      default:
        program.fail(fmt::format("unknown rebase opcode {:#x}", opcode));
    }
  }
}

namespace {

// The library that an ordinal stands for; special ones search everywhere.
std::string libraryOf(std::int64_t ordinal, const MachOImage& image, const Program& program) {
  if (ordinal <= 0) {
    if (ordinal < -2) program.fail("an unknown special library");
    return {};
  }
  if (static_cast<std::uint64_t>(ordinal) > image.libraries.size())
    program.fail("a library that is not linked");
  return image.libraries[static_cast<std::size_t>(ordinal) - 1];
}

}  // namespace

void readBinds(const ByteReader& opcodes, BindKind kind, Slice slice, MachOImage& image) {
  Program program(opcodes, slice, image);
  Bind bind;
  bind.lazy = kind == BindKind::Lazy;
  const auto one = [&](std::uint64_t address) {
    if (bind.symbol.empty()) program.fail("a bind without a symbol");
    bind.address = address;
    image.binds.push_back(bind);
  };
  while (!program.atEnd()) {
    const std::uint8_t opcode = program.byte();
    const unsigned operand = opcode & 0x0f;
    const auto special = static_cast<std::int64_t>(static_cast<std::int8_t>(0xf0 | operand));
    switch (opcode & 0xf0) {
      case 0x00:  // in lazy binds this only separates one from the next
        if (kind != BindKind::Lazy) program.stop();
        break;
      case 0x10:
        bind.library = libraryOf(operand, image, program);
        break;
      case 0x20:
        bind.library = libraryOf(static_cast<std::int64_t>(program.uleb()), image, program);
        break;
      case 0x30:
        bind.library = libraryOf(operand ? special : 0, image, program);
        break;
      case 0x40:
        bind.symbol = program.text();
        break;
      case 0x50:
        if (operand != 1) program.fail("a bind that is no pointer");
        break;
      case 0x60:
        bind.addend = program.sleb();
        break;
      case 0x70:
        program.setSegment(operand, program.uleb());
        break;
      case 0x80:
        program.skip(program.uleb());
        break;
      case 0x90:
        program.repeat(1, 0, one);
        break;
      case 0xa0: {
        const std::uint64_t gap = program.uleb();
        program.repeat(1, gap, one);
        break;
      }
      case 0xb0:
        program.repeat(1, std::uint64_t{operand} * pointerSize(slice), one);
        break;
      case 0xc0: {
        const std::uint64_t count = program.uleb();
        const std::uint64_t gap = program.uleb();
        program.repeat(count, gap, one);
        break;
      }
      default:
        program.fail(fmt::format("unknown bind opcode {:#x}", opcode));
    }
  }
}

}  // namespace sim::guest
