#include "sim/explore/draw_settings.hpp"

#include <fmt/format.h>

#include <cstdlib>

#include "sim/explore/draw.hpp"
#include "sim/explore/names.hpp"

namespace sim::explore {

namespace {

plist_t drawText(Random& random) {
  if (random.chance(50)) return plist_new_string(random.of(kApps).c_str());
  static const std::vector<std::string> odd = {
      "", "YES", "0", " \n", "com.example.gone", "caf\u00e9", std::string(2000, 'x')};
  return plist_new_string(random.of(odd).c_str());
}

// A value of any type; containers nest a few levels.
plist_t drawNode(Random& random, unsigned depth = 0) {
  switch (random.below(depth < 4 ? 8 : 6)) {
    case 0:
      return plist_new_bool(random.chance(70));
    case 1:
      return plist_new_uint(random.below(3));
    case 2:
      return plist_new_real(static_cast<double>(random.below(5)) / 2);
    case 3:
      return drawText(random);
    case 4:
      return plist_new_data("\x01\x02\x03", random.below(4));
    case 5:
      return plist_new_date(static_cast<std::int32_t>(random.below(1000000)), 0);
    case 6: {
      plist_t array = plist_new_array();
      for (std::size_t i = random.below(4); i > 0; --i)
        plist_array_append_item(array, drawNode(random, depth + 1));
      return array;
    }
    default: {
      plist_t dictionary = plist_new_dict();
      for (std::size_t i = random.below(4); i > 0; --i)
        plist_dict_set_item(dictionary, fmt::format("k{}", i).c_str(), drawNode(random, depth + 1));
      return dictionary;
    }
  }
}

plist_t drawRoot(Random& random) {
  if (random.chance(5)) return drawNode(random);
  plist_t root = plist_new_dict();
  for (const auto* keys : {&kSwitches, &kTexts, &kMarkers})
    for (const std::string& key : *keys) {
      if (random.chance(40)) continue;
      // Half of them as they should be, so that something still happens.
      plist_t value = nullptr;
      if (random.chance(50))
        value = drawNode(random);
      else
        value = keys == &kTexts ? plist_new_string(random.of(kPlayers).c_str()) : plist_new_bool(1);
      plist_dict_set_item(root, key.c_str(), value);
    }
  if (random.chance(30)) plist_dict_set_item(root, "other", drawNode(random));
  return root;
}

}  // namespace

PlistNode drawValue(Random& random) { return PlistNode(drawNode(random)); }

PlistNode drawSettings(Random& random) { return PlistNode(drawRoot(random)); }

std::string asFile(const PlistNode& root, Random& random) {
  if (random.chance(50)) return toXml(root.get());
  char* bytes = nullptr;
  std::uint32_t length = 0;
  plist_to_bin(root.get(), &bytes, &length);
  const std::string file(bytes ? bytes : "", bytes ? length : 0);
  std::free(bytes);
  return file;
}

std::string asArgument(const std::string& file) {
  if (file.empty()) return R"("")";
  std::string digits = "hex ";
  for (const char byte : file) digits += fmt::format("{:02x}", static_cast<unsigned char>(byte));
  return digits;
}

std::string drawSettingsFile(Random& random) {
  std::string file = asFile(drawSettings(random), random);
  if (random.chance(15)) file.resize(random.below(file.size() + 1));
  return asArgument(file);
}

}  // namespace sim::explore
