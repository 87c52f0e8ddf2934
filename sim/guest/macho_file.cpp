#include "sim/guest/macho_file.hpp"

#include <algorithm>
#include <optional>

#include "sim/guest/byte_reader.hpp"
#include "sim/guest/fixups.hpp"

namespace sim::guest {

namespace {

constexpr std::uint32_t kFatMagic = 0xcafebabe;
constexpr std::uint32_t kDynamicLibrary = 6;
constexpr std::uint64_t kPage = 0x4000;  // the largest that any kernel has, for both slices
constexpr std::uint64_t kLargestImage = std::uint64_t{64} << 20;
constexpr std::uint32_t kMostCommands = 1000;
constexpr std::uint32_t kMostSlices = 16;

struct Cpu {
  std::uint32_t magic, type, subtype;
};
Cpu cpuOf(Slice slice) {
  if (slice == Slice::arm64) return {0xfeedfacf, 0x0100000c, 0};
  return {0xfeedface, 12, 9};
}

bool isFat(const ByteReader& file) { return file.bigEndian(0) == kFatMagic; }

// The wanted part of a fat file, if it has it.
std::optional<ByteReader> partOf(const ByteReader& file, Slice slice) {
  const std::uint32_t count = file.bigEndian(4);
  if (count > kMostSlices) throw MachOError(fmt::format("a fat file of {} slices", count));
  for (std::uint32_t i = 0; i < count; ++i) {
    const std::uint64_t entry = 8 + std::uint64_t{i} * 20;
    if (file.bigEndian(entry) == cpuOf(slice).type &&
        file.bigEndian(entry + 4) == cpuOf(slice).subtype)
      return file.slice(file.bigEndian(entry + 8), file.bigEndian(entry + 12), "a slice");
  }
  return std::nullopt;
}

// The wanted part of a fat file; a thin file is its own.
ByteReader thin(const ByteReader& file, Slice slice) {
  if (!isFat(file)) return file;
  if (const auto part = partOf(file, slice)) return *part;
  throw MachOError("the fat file has no slice for the architecture asked for");
}

// Reads the load commands of one thin file into an image.
class Loader {
 public:
  Loader(const ByteReader& file, Slice slice) : file_(file), slice_(slice) {}

  MachOImage load() {
    readHeader();
    checkLayout();
    readFixups();
    std::ranges::stable_sort(image_.symbols, {}, &Symbol::address);
    return std::move(image_);
  }

 private:
  bool wide() const { return slice_ == Slice::arm64; }
  // A pointer-wide field.
  std::uint64_t word(const ByteReader& from, std::uint64_t offset) const {
    return wide() ? from.at<std::uint64_t>(offset) : from.at<std::uint32_t>(offset);
  }
  [[noreturn]] static void fail(const ByteReader& where, const std::string& what) {
    throw MachOError(fmt::format("{} at offset {:#x}", what, where.base()));
  }

  void readHeader() {
    const Cpu cpu = cpuOf(slice_);
    if (file_.at<std::uint32_t>(0) != cpu.magic) fail(file_, "not a Mach-O file of the slice");
    if (file_.at<std::uint32_t>(4) != cpu.type || file_.at<std::uint32_t>(8) != cpu.subtype)
      fail(file_, "a file for another processor");
    if (file_.at<std::uint32_t>(12) != kDynamicLibrary) fail(file_, "not a dynamic library");
    const std::uint32_t count = file_.at<std::uint32_t>(16);
    const std::uint32_t size = file_.at<std::uint32_t>(20);
    if (count > kMostCommands) fail(file_, fmt::format("{} load commands", count));
    headerSize_ = wide() ? 32 : 28;
    const ByteReader commands = file_.slice(headerSize_, size, "the load commands");
    commandsEnd_ = headerSize_ + size;
    std::uint64_t at = 0;
    for (std::uint32_t i = 0; i < count; ++i) {
      const std::uint32_t length = commands.at<std::uint32_t>(at + 4);
      if (length < 8 || length % (wide() ? 8 : 4) != 0)
        fail(commands.slice(at, 8, "a command"), fmt::format("a load command of {} bytes", length));
      readCommand(commands.slice(at, length, "a load command"));
      at += length;
    }
  }

  void readCommand(const ByteReader& command) {
    constexpr std::uint32_t kRequired = 0x80000000;
    const auto kind = command.at<std::uint32_t>(0);
    switch (kind) {
      case 0x01:
      case 0x19:
        readSegment(command, kind == 0x19);
        break;
      case 0x02:
        readSymbols(command);
        break;
      case 0x0c:
      case 0x18 | kRequired:
        image_.libraries.push_back(libraryName(command));
        break;
      case 0x0d:
        image_.installName = libraryName(command);
        break;
      case 0x22:
      case 0x22 | kRequired:
        for (unsigned i = 0; i < 4; ++i)
          fixups_[i] = file_.slice(command.at<std::uint32_t>(8 + i * 8),
                                   command.at<std::uint32_t>(12 + i * 8), "fix-ups");
        break;
      case 0x21:
      case 0x2c:
        if (command.at<std::uint32_t>(16) != 0) fail(command, "an encrypted file");
        break;
      default:
        if (kind & kRequired) fail(command, fmt::format("unknown load command {:#x}", kind));
    }
  }

  static std::string libraryName(const ByteReader& command) {
    return command.text(command.at<std::uint32_t>(8));
  }

  void readSegment(const ByteReader& command, bool isWide) {
    if (isWide != wide()) fail(command, "a segment of the other width");
    const std::uint64_t step = wide() ? 8 : 4;
    Segment segment;
    segment.name = command.fixedText(8, 16);
    segment.address = word(command, 24);
    segment.size = word(command, 24 + step);
    const std::uint64_t offset = word(command, 24 + 2 * step);
    const std::uint64_t fileSize = word(command, 24 + 3 * step);
    const auto protection = command.at<std::uint32_t>(24 + 4 * step + 4);
    segment.writable = (protection & 2) != 0;
    segment.executable = (protection & 4) != 0;
    if (segment.address % kPage != 0 || offset % kPage != 0)
      fail(command, "segment " + segment.name + " not aligned to 16 KiB");
    if (fileSize > segment.size) fail(command, "segment " + segment.name + " larger in the file");
    if (segment.size > kLargestImage || segment.address > kLargestImage)
      fail(command, "segment " + segment.name + " too large");
    if (segment.writable && segment.executable)
      fail(command, "segment " + segment.name + " both writable and executable");
    segment.contents = file_.slice(offset, fileSize, "a segment").copy();
    if (offset == 0 && fileSize > 0 && (!segment.executable || fileSize < commandsEnd_))
      fail(command, "load commands not in an executable segment");
    fileOffsets_.push_back(offset);
    const auto count = command.at<std::uint32_t>(24 + 4 * step + 8);
    readSections(command, segment, count);
    image_.segments.push_back(std::move(segment));
  }

  void readSections(const ByteReader& command, const Segment& segment, std::uint32_t count) {
    constexpr std::uint32_t kInitialisers = 9;
    const std::uint64_t first = wide() ? 72 : 56;
    const std::uint64_t each = wide() ? 80 : 68;
    for (std::uint32_t i = 0; i < count; ++i) {
      const ByteReader entry = command.slice(first + i * each, each, "a section");
      Section section{segment.name, entry.fixedText(0, 16), word(entry, 32),
                      word(entry, wide() ? 40 : 36), false};
      section.holdsInitialisers =
          (entry.at<std::uint32_t>(wide() ? 64 : 56) & 0xff) == kInitialisers;
      if (section.address < segment.address || section.size > segment.size ||
          section.address - segment.address > segment.size - section.size)
        fail(entry, "section " + section.name + " outside of its segment");
      image_.sections.push_back(std::move(section));
    }
  }

  void readSymbols(const ByteReader& command) {
    const std::uint64_t each = wide() ? 16 : 12;
    const auto count = command.at<std::uint32_t>(12);
    const ByteReader entries =
        file_.slice(command.at<std::uint32_t>(8), std::uint64_t{count} * each, "symbols");
    const ByteReader names =
        file_.slice(command.at<std::uint32_t>(16), command.at<std::uint32_t>(20), "symbol names");
    for (std::uint64_t i = 0; i < count; ++i) {
      const ByteReader entry = entries.slice(i * each, each, "a symbol");
      const auto type = entry.at<std::uint8_t>(4);
      const bool isDebugging = (type & 0xe0) != 0;
      const bool isInSection = (type & 0x0e) == 0x0e;
      if (isDebugging || !isInSection) continue;
      image_.symbols.push_back({names.text(entry.at<std::uint32_t>(0)), word(entry, 8)});
    }
  }

  void checkLayout() {
    const auto& segments = image_.segments;
    if (segments.empty()) fail(file_, "no segments");
    for (std::size_t i = 0; i < segments.size(); ++i) {
      image_.size = std::max(image_.size, segments[i].address + segments[i].size);
      for (std::size_t j = i + 1; j < segments.size(); ++j)
        if (segments[i].address < segments[j].address + segments[j].size &&
            segments[j].address < segments[i].address + segments[i].size)
          fail(file_, segments[i].name + " and " + segments[j].name + " overlap");
    }
    if (segments.back().name != "__LINKEDIT" ||
        std::ranges::max(fileOffsets_) != fileOffsets_.back())
      fail(file_, "__LINKEDIT is not last");
    if (image_.size > kLargestImage) fail(file_, "the image is too large");
  }

  void readFixups() {
    if (fixups_[0].size()) readRebases(fixups_[0], slice_, image_);
    if (fixups_[1].size()) readBinds(fixups_[1], BindKind::Regular, slice_, image_);
    if (fixups_[2].size()) readBinds(fixups_[2], BindKind::Weak, slice_, image_);
    if (fixups_[3].size()) readBinds(fixups_[3], BindKind::Lazy, slice_, image_);
  }

  const ByteReader& file_;
  Slice slice_;
  std::uint64_t headerSize_ = 0;
  std::uint64_t commandsEnd_ = 0;
  std::vector<std::uint64_t> fileOffsets_;
  ByteReader fixups_[4] = {ByteReader({}), ByteReader({}), ByteReader({}), ByteReader({})};
  MachOImage image_;
};

}  // namespace

std::vector<Slice> slicesIn(const std::vector<std::uint8_t>& file) {
  const ByteReader reader(file);
  std::vector<Slice> slices;
  for (const Slice slice : {Slice::arm64, Slice::armv7})
    if (isFat(reader) ? partOf(reader, slice).has_value()
                      : reader.at<std::uint32_t>(0) == cpuOf(slice).magic)
      slices.push_back(slice);
  if (slices.empty()) throw MachOError("the file has no slice for arm64 or armv7");
  return slices;
}

MachOImage loadMachO(const std::vector<std::uint8_t>& file, Slice slice) {
  const ByteReader reader(file);
  const ByteReader part = thin(reader, slice);
  return Loader(part, slice).load();
}

}  // namespace sim::guest
