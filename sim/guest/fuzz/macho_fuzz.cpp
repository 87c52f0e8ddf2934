// libFuzzer target: whatever a file holds, loading it as a device binary ends in an image or in a
// clear error, for both slices. Leaves out running it.
#include "sim/guest/macho_file.hpp"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size);
int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const std::vector<std::uint8_t> file(data, data + size);
  for (const auto slice : {sim::guest::Slice::arm64, sim::guest::Slice::armv7}) {
    try {
      sim::guest::loadMachO(file, slice);
    } catch (const sim::guest::MachOError&) {
      // what a damaged file is meant to end in
    }
  }
  return 0;
}
