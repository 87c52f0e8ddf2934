// Hostile settings: whatever the settings file holds, SpringBoard, the players and an ordinary app
// start with it, Play is pressed, and nothing that must always hold is broken.
#include <cstdlib>
#include <cstring>
#include <iostream>
#include <sstream>

#include "sim/explore/draw_settings.hpp"
#include "sim/explore/invariants.hpp"
#include "sim/explore/names.hpp"
#include "sim/host/host_library.hpp"
#include "sim/platform/device_actions.hpp"
#include "sim/scenario/settings_file.hpp"
#include "sim/search/workspace.hpp"

extern "C" std::size_t LLVMFuzzerMutate(std::uint8_t* data, std::size_t size, std::size_t most);

namespace {

using namespace sim;
using search::Random;

const char* const kBefore[] = {
    R"(app com.spotify.client "Spotify")",
    R"(app com.apple.podcasts "Podcasts")",
    R"(app com.example.notes "Notes")",
};
const char* const kAfter[] = {
    "boot",
    "title-view new view",
    "start com.spotify.client",
    "start com.apple.podcasts",
    "start com.example.notes",
    "tap-transport 3",
    "remote 2",
    "remote 0 in com.example.notes",
    "headphones in",
    "tap-icon com.spotify.client",
    "quit-card com.apple.podcasts",
    "announce",
    "advance 2",
    "unlock",
    "press 1",
    "press 0",
    "locked yes",
    "remote 0",
    "unlock",
    "boot",
    "unlock",
};

class Trial {
 public:
  explicit Trial(LibraryLoader& loader)
      : output_(trace_, scenario::Format::Text), session_(loader, output_, false) {}

  void play(const std::string& line) {
    play(std::get<scenario::Command>(*scenario::parseLine(line)), line);
  }
  void playSettings(const std::string& bytes) {
    play({"prefs-file \"…\"",
          [&](Device& device) -> std::optional<bool> {
            scenario::writeSettings(device, bytes);
            return std::nullopt;
          }},
         "prefs-file");
  }

 private:
  void play(const scenario::Command& command, const std::string& line) {
    try {
      session_.run(command);
    } catch (const ActionError&) {
      return;  // no alert to press a button of, for one
    }
    const auto violation = invariants_.check(line);
    if (!violation) return;
    std::cerr << trace_.str() << "Broken: " << violation->rule << ": " << violation->what << '\n';
    std::abort();
  }

  std::ostringstream trace_;
  scenario::Output output_;
  scenario::Session session_;
  explore::Invariants invariants_{session_};
};

// One key gets another value: of any type, deep, huge or none.
void mutateOne(plist_t root, Random& random) {
  const auto* keys = random.chance(70) ? &explore::kSwitches : &explore::kTexts;
  if (random.chance(20)) keys = &explore::kMarkers;
  const std::string key = random.of(*keys);
  PlistNode value = explore::drawValue(random);
  switch (random.below(6)) {
    case 0:
      plist_dict_remove_item(root, key.c_str());
      return;
    case 1:  // deep
      for (std::size_t depth = random.below(300); depth > 0; --depth) {
        PlistNode around(random.chance(50) ? plist_new_array() : plist_new_dict());
        if (plist_get_node_type(around.get()) == PLIST_ARRAY)
          plist_array_append_item(around.get(), value.release());
        else
          plist_dict_set_item(around.get(), "in", value.release());
        value = std::move(around);
      }
      break;
    case 2:  // huge
      value.reset(plist_new_string(std::string(random.below(50000), 'x').c_str()));
      break;
    case 3:
      value.reset(plist_new_array());
      for (std::size_t i = random.below(2000); i > 0; --i)
        plist_array_append_item(value.get(), plist_new_bool(i % 2 != 0));
      break;
    default:
      break;
  }
  plist_dict_set_item(root, key.c_str(), value.release());
}

std::string mutated(const std::string& file, Random& random) {
  PlistNode root = parsePropertyList(file);
  if (!root || plist_get_node_type(root.get()) != PLIST_DICT) root = explore::drawSettings(random);
  if (plist_get_node_type(root.get()) == PLIST_DICT)
    for (std::size_t i = 1 + random.below(3); i > 0; --i) mutateOne(root.get(), random);
  return explore::asFile(root, random);
}

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
  const std::string file = mutated({reinterpret_cast<const char*>(data), size}, random);
  if (file.size() > most) return LLVMFuzzerMutate(data, size, most);
  std::memcpy(data, file.data(), file.size());
  return file.size();
}

extern "C" int LLVMFuzzerInitialize(int*, char***) {
  setenv("TMPDIR", search::temporaryFolder().c_str(), 1);
  return 0;
}

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  Trial trial(loader());
  for (const char* line : kBefore) trial.play(line);
  trial.playSettings({reinterpret_cast<const char*>(data), size});
  for (const char* line : kAfter) trial.play(line);
  return 0;
}
