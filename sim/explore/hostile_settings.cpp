#include "sim/explore/hostile_settings.hpp"

#include "sim/explore/draw_settings.hpp"
#include "sim/explore/names.hpp"

namespace sim::explore {

using search::Random;

Lines scenarioOn(const std::string& settings) {
  const std::string file = "prefs-file " + asArgument(settings);
  return {
      R"(app com.spotify.client "Spotify")",
      R"(app com.apple.podcasts "Podcasts")",
      R"(app com.example.notes "Notes")",
      file,
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
      // By now SpringBoard may have mended it: the page gets it as it was, as it opens and again
      // behind its back.
      file,
      "settings open",
      R"(settings set "Enabled" yes)",
      "settings help",
      R"(settings choose "Preferred Player" com.example.notes)",
      "advance 6",
      file,
      R"(settings choose "Music Replacement" none)",
      "prefs-readonly yes",
      R"(settings set "Auto-Play" yes)",
      "settings reset",
      "prefs-readonly no",
      "settings reset",
      R"(settings set "Enabled" yes)",
      R"(settings set "Auto-Play" yes)",
      R"(settings set "Not From the Home Screen" yes)",
      R"(settings choose "Preferred Player" com.spotify.client)",
      "settings close",
      "tap-transport 3",
  };
}

namespace {

// One key gets another value: of any type, deep, huge or none.
void mutateOne(plist_t root, Random& random) {
  const auto* keys = random.chance(70) ? &kSwitches : &kTexts;
  if (random.chance(20)) keys = &kMarkers;
  const std::string key = random.of(*keys);
  PlistNode value = drawValue(random);
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

}  // namespace

std::string mutatedSettings(const std::string& settings, Random& random) {
  PlistNode root = parsePropertyList(settings);
  if (!root || plist_get_node_type(root.get()) != PLIST_DICT) root = drawSettings(random);
  if (plist_get_node_type(root.get()) == PLIST_DICT)
    for (std::size_t i = 1 + random.below(3); i > 0; --i) mutateOne(root.get(), random);
  return asFile(root, random);
}

}  // namespace sim::explore
