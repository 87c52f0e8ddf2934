// Hostile settings: whatever the settings file holds, SpringBoard, the players and an ordinary app
// start with it, Play is pressed, and nothing that must always hold is broken. A libFuzzer target;
// leaves out files larger than the fuzzer makes.
#include <cstdlib>
#include <cstring>
#include <iostream>

#include "sim/explore/hostile_settings.hpp"
#include "sim/host/host_library.hpp"
#include "sim/search/workspace.hpp"

extern "C" std::size_t LLVMFuzzerMutate(std::uint8_t* data, std::size_t size, std::size_t most);

namespace {

using namespace sim;
using search::Random;

LibraryLoader& loader() {
  static HostLibraryLoader host(CORVALEN_LIBRARY);
  return host;
}

}  // namespace

// Freed memory need not be remembered for long, as the library's processes live short.
extern "C" const char* __asan_default_options();
extern "C" const char* __asan_default_options() {
  return "malloc_context_size=5:quarantine_size_mb=16:max_malloc_fill_size=0:detect_leaks=0";
}

// Half of all inputs stay property lists, with something changed; the rest are any bytes.
extern "C" std::size_t LLVMFuzzerCustomMutator(std::uint8_t* data, std::size_t size,
                                               std::size_t most, unsigned seed) {
  Random random(seed);
  if (random.chance(50)) return LLVMFuzzerMutate(data, size, most);
  const std::string file =
      explore::mutatedSettings({reinterpret_cast<const char*>(data), size}, random);
  if (file.size() > most) return LLVMFuzzerMutate(data, size, most);
  std::memcpy(data, file.data(), file.size());
  return file.size();
}

extern "C" int LLVMFuzzerInitialize(int*, char***) {
  setenv("TMPDIR", search::temporaryFolder().c_str(), 1);
  return 0;
}

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const auto lines = explore::scenarioOn({reinterpret_cast<const char*>(data), size});
  const auto playback = explore::play(loader(), lines, explore::OutOfPlace::LeftOut);
  if (const auto& violation = playback.violation) {
    std::cerr << playback.trace << "Broken: " << violation->rule << ": " << violation->what << '\n';
    std::abort();
  }
  return 0;
}
