#include "sim/guest/machine.hpp"

#include <algorithm>

namespace sim::guest {

namespace {

constexpr Address kStackBase = 0x30000000;
constexpr std::size_t kStackSize = std::size_t{1} << 20;

}  // namespace

Machine::Machine(const MachOImage& macho, Slice slice)
    : cpu(slice, memory), image(macho, "proCorvalen", kLibraryBase, slice, memory, traps) {
  cpu.map(memory.add(kStackBase, kStackSize, true, false));
  cpu.map(mapPlatformVariables(memory));
  for (const auto* region : image.regions()) {
    cpu.map(*region);
    if (region->writable || !region->executable)
      written_.push_back({region, {region->host, region->host + region->size}});
  }
  cpu.setStackPointer(kStackBase + kStackSize);
  cpu.keepRegisters();
  entries_ = traps.count();
}

void Machine::restore() {
  memory.clear();
  for (const auto& [region, contents] : written_) std::ranges::copy(contents, region->host);
  traps.forgetAllBut(entries_);
  cpu.restoreRegisters();
}

}  // namespace sim::guest
