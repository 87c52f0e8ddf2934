// Device binaries: Mach-O files, fat or thin, read and checked as strictly as a phone's loader
// does. Leaves out slices but arm64 and armv7; encrypted files are refused.
#pragma once
#include <cstdint>
#include <stdexcept>
#include <string>
#include <vector>

#include "sim/guest/slice.hpp"

namespace sim::guest {

// What is wrong with a file, and at which offset.
class MachOError : public std::runtime_error {
 public:
  using std::runtime_error::runtime_error;
};

struct Segment {
  std::string name;
  std::uint64_t address = 0;
  std::uint64_t size = 0;
  bool writable = false;
  bool executable = false;
  std::vector<std::uint8_t> contents;  // from the file; the rest of the segment is zero
};

struct Section {
  std::string segment;
  std::string name;
  std::uint64_t address = 0;
  std::uint64_t size = 0;
  bool holdsInitialisers = false;
};

// A pointer to be set to an imported symbol plus the addend.
struct Bind {
  std::uint64_t address = 0;
  std::string symbol;
  std::int64_t addend = 0;
  std::string library;  // install name; empty for a flat look-up
  bool lazy = false;    // on a phone, at the first call
};

struct Symbol {
  std::string name;
  std::uint64_t address = 0;
};

struct MachOImage {
  std::string installName;
  std::vector<std::string> libraries;
  std::vector<Segment> segments;
  std::vector<Section> sections;
  std::vector<std::uint64_t> rebases;  // addresses of pointers into the image
  std::vector<Bind> binds;
  std::vector<Symbol> symbols;  // defined ones, by address
  std::uint64_t size = 0;       // of the whole image in memory
};

// Which slices a file holds, arm64 first; a thin file holds one. Throws MachOError if it holds
// none.
std::vector<Slice> slicesIn(const std::vector<std::uint8_t>& file);

// Reads the wanted slice of a file. Throws MachOError for whatever a phone would refuse.
MachOImage loadMachO(const std::vector<std::uint8_t>& file, Slice slice);

}  // namespace sim::guest
