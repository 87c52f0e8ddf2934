// The loader of device binaries, on the files that ship and on damaged ones.
#include <gtest/gtest.h>

#include <cstring>
#include <fstream>
#include <iterator>

#include "sim/guest/fixups.hpp"
#include "sim/guest/macho_file.hpp"

namespace sim::guest {
namespace {

using Bytes = std::vector<std::uint8_t>;

Bytes sample(const std::string& name) {
  std::ifstream in(std::string(CORVALEN_SOURCE_DIR) + "/tests/corpus/macho/" + name,
                   std::ios::binary);
  return {std::istreambuf_iterator<char>(in), {}};
}

template <class T>
void put(Bytes& bytes, std::size_t at, T value) {
  std::memcpy(&bytes.at(at), &value, sizeof value);
}

std::string error(const Bytes& bytes, Slice slice) {
  try {
    loadMachO(bytes, slice);
  } catch (const MachOError& problem) {
    return problem.what();
  }
  return "none";
}

TEST(MachO, AFatFileHoldsBothSlices) {
  for (const Slice slice : {Slice::arm64, Slice::armv7}) {
    const MachOImage image = loadMachO(sample("fat.dylib"), slice);
    EXPECT_EQ(image.segments.size(), 3u);
    EXPECT_EQ(image.segments[0].name, "__TEXT");
    EXPECT_FALSE(image.rebases.empty());
    EXPECT_FALSE(image.binds.empty());
    EXPECT_EQ(image.libraries.size(), 4u);
    EXPECT_EQ(image.installName, "/Library/MobileSubstrate/DynamicLibraries/proCorvalen.dylib");
  }
}

TEST(MachO, AThinFileIsItsOwnSlice) {
  EXPECT_EQ(error(sample("arm64.dylib"), Slice::arm64), "none");
  EXPECT_NE(error(sample("arm64.dylib"), Slice::armv7), "none");
}

// Shorter prefixes first densely, then in steps: each is an error or an image, never worse.
TEST(MachO, AFileCutAnywhereIsAnErrorAndNothingWorse) {
  for (const auto& [name, slice] :
       {std::pair{"arm64.dylib", Slice::arm64}, std::pair{"armv7.dylib", Slice::armv7}}) {
    const Bytes whole = sample(name);
    for (std::size_t size = 0; size < whole.size(); size += size < 4096 ? 1 : 97)
      EXPECT_NE(error({whole.begin(), whole.begin() + static_cast<long>(size)}, slice), "none")
          << name << " cut at " << size;
  }
}

TEST(MachO, EveryByteOfTheHeaderMayBeWrong) {
  const Bytes whole = sample("armv7.dylib");
  for (std::size_t at = 0; at < 1500; ++at)
    for (const int value : {0x00, 0x7f, 0xff}) {
      Bytes broken = whole;
      broken[at] = static_cast<std::uint8_t>(value);
      error(broken, Slice::armv7);  // whatever comes of it, it ends
    }
}

TEST(MachO, ErrorsSayWhatAndWhere) {
  Bytes bytes = sample("arm64.dylib");
  put(bytes, 12, std::uint32_t{2});
  EXPECT_EQ(error(bytes, Slice::arm64), "not a dynamic library at offset 0x0");
  bytes = sample("arm64.dylib");
  put(bytes, 36, std::uint32_t{0});  // the first command's size
  EXPECT_EQ(error(bytes, Slice::arm64), "a load command of 0 bytes at offset 0x20");
  bytes = sample("arm64.dylib");
  put(bytes, 32, std::uint32_t{0x80000034});
  EXPECT_EQ(error(bytes, Slice::arm64), "unknown load command 0x80000034 at offset 0x20");
  EXPECT_EQ(error({1, 2}, Slice::arm64), "a value of 4 bytes at offset 0x0 runs past the end");
}

TEST(MachO, SegmentsKeepApartAndToTheirPages) {
  Bytes bytes = sample("arm64.dylib");
  const std::size_t address = 32 + 24;  // of the first segment
  put(bytes, address, std::uint64_t{0x1000});
  EXPECT_NE(error(bytes, Slice::arm64).find("not aligned to 16 KiB"), std::string::npos);
  bytes = sample("armv7.dylib");
  put(bytes, 28 + 24, std::uint32_t{0x1000});
  EXPECT_NE(error(bytes, Slice::armv7).find("not aligned to 16 KiB"), std::string::npos);
  bytes = sample("arm64.dylib");
  put(bytes, address, std::uint64_t{0x8000});
  EXPECT_NE(error(bytes, Slice::arm64), "none");
}

// ---- Opcodes

MachOImage target() {
  MachOImage image;
  image.libraries = {"/usr/lib/first", "/usr/lib/second"};
  image.segments = {{"__TEXT", 0, 0x4000, false, true, {}},
                    {"__DATA", 0x4000, 0x4000, true, false, {}}};
  return image;
}

std::vector<std::uint64_t> rebased(const Bytes& opcodes, Slice slice = Slice::arm64) {
  MachOImage image = target();
  readRebases(ByteReader(opcodes), slice, image);
  return image.rebases;
}

TEST(Rebases, EachOpcodeDoesWhatItSays) {
  using V = std::vector<std::uint64_t>;
  EXPECT_EQ(rebased({0x11, 0x21, 0x10, 0x52}), (V{0x4010, 0x4018}));
  EXPECT_EQ(rebased({0x21, 0x00, 0x60, 0x03}), (V{0x4000, 0x4008, 0x4010}));
  EXPECT_EQ(rebased({0x21, 0x00, 0x30, 0x20, 0x51}), (V{0x4020}));
  EXPECT_EQ(rebased({0x21, 0x00, 0x42, 0x51}), (V{0x4010}));
  EXPECT_EQ(rebased({0x21, 0x00, 0x70, 0x08, 0x51}), (V{0x4000, 0x4010}));
  EXPECT_EQ(rebased({0x21, 0x00, 0x80, 0x02, 0x08}), (V{0x4000, 0x4010}));
  EXPECT_EQ(rebased({0x21, 0x00, 0x52}, Slice::armv7), (V{0x4000, 0x4004}));
  EXPECT_EQ(rebased({0x00, 0x51}), (V{}));
}

TEST(Rebases, WhatCannotBeIsAnError) {
  EXPECT_THROW(rebased({0x51}), MachOError);              // no segment yet
  EXPECT_THROW(rebased({0x20, 0x00, 0x51}), MachOError);  // not writable
  EXPECT_THROW(rebased({0x25, 0x00}), MachOError);        // no such segment
  EXPECT_THROW(rebased({0x12}), MachOError);              // no pointer
  EXPECT_THROW(rebased({0x21, 0x80}), MachOError);        // a number without end
  EXPECT_THROW(rebased({0x21, 0x00, 0x60, 0xff, 0xff, 0xff, 0x7f}), MachOError);
  EXPECT_THROW(rebased({0x21, 0x00, 0x80, 0xff, 0xff, 0x03, 0x00}), MachOError);
  EXPECT_THROW(rebased({0x21, 0xfc, 0x7f, 0x51}), MachOError);  // half beyond the end
  EXPECT_THROW(rebased({0xf0}), MachOError);
}

std::vector<Bind> bound(const Bytes& opcodes, BindKind kind = BindKind::Regular) {
  MachOImage image = target();
  readBinds(ByteReader(opcodes), kind, Slice::arm64, image);
  return image.binds;
}

TEST(Binds, ASymbolOfALibraryGoesToAnAddress) {
  const auto binds = bound({0x12, 0x40, '_', 'a', 0, 0x51, 0x60, 0x7f, 0x71, 0x08, 0x90});
  ASSERT_EQ(binds.size(), 1u);
  EXPECT_EQ(binds[0].symbol, "_a");
  EXPECT_EQ(binds[0].library, "/usr/lib/second");
  EXPECT_EQ(binds[0].addend, -1);
  EXPECT_EQ(binds[0].address, 0x4008u);
}

TEST(Binds, RepetitionsAndSkips) {
  const Bytes start{0x11, 0x40, 'a', 0, 0x71, 0x00};
  const auto after = [&](Bytes more) {
    Bytes all = start;
    all.insert(all.end(), more.begin(), more.end());
    std::vector<std::uint64_t> addresses;
    for (const Bind& bind : bound(all)) addresses.push_back(bind.address);
    return addresses;
  };
  using V = std::vector<std::uint64_t>;
  EXPECT_EQ(after({0xa0, 0x08, 0x90}), (V{0x4000, 0x4010}));
  EXPECT_EQ(after({0xb1, 0x90}), (V{0x4000, 0x4010}));
  EXPECT_EQ(after({0xc0, 0x02, 0x08}), (V{0x4000, 0x4010}));
  EXPECT_EQ(after({0x80, 0x10, 0x90}), (V{0x4010}));
}

TEST(Binds, LazyOnesGoOnBehindTheirSeparators) {
  const Bytes two{0x71, 0x00, 0x11, 0x40, 'a', 0, 0x90, 0x00,
                  0x71, 0x08, 0x11, 0x40, 'b', 0, 0x90, 0x00};
  EXPECT_EQ(bound(two, BindKind::Lazy).size(), 2u);
  EXPECT_EQ(bound(two, BindKind::Regular).size(), 1u);
}

TEST(Binds, WhatCannotBeIsAnError) {
  EXPECT_THROW(bound({0x71, 0x00, 0x90}), MachOError);                // no symbol
  EXPECT_THROW(bound({0x13}), MachOError);                            // no such library
  EXPECT_THROW(bound({0x40, 'a'}), MachOError);                       // a name without end
  EXPECT_THROW(bound({0x52}), MachOError);                            // no pointer
  EXPECT_THROW(bound({0x40, 'a', 0, 0x70, 0x00, 0x90}), MachOError);  // not writable
  EXPECT_THROW(bound({0xd0}), MachOError);
}

}  // namespace
}  // namespace sim::guest
