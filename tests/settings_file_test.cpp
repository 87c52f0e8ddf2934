// What the settings file holds after the library has written it.
#include "sim/scenario/settings_file.hpp"

#include "sim/foundation/plist_file.hpp"
#include "sim/foundation/plist_scalars.hpp"
#include "sim/foundation/property_list.hpp"
#include "sim/platform/device_actions.hpp"
#include "tests/device_fixture.hpp"

namespace sim {
namespace {

class SettingsFile : public DeviceTest {
 protected:
  std::string contents() const {
    const std::string* file =
        device.files.read("/var/mobile/Library/Preferences/com.qvethmar.corvalenpro.plist");
    return file ? *file : std::string();
  }
  static std::size_t count(const std::string& text, const std::string& part) {
    std::size_t found = 0;
    for (auto at = text.find(part); at != std::string::npos; at = text.find(part, at + 1)) ++found;
    return found;
  }
};

TEST_F(SettingsFile, IsMadeWithExactlySevenSwitchesThatAreOff) {
  booted();
  const std::string file = contents();
  for (const char* key :
       {"iea9AQXrEmhSZ4u", "4sySMd4CfPOr0F", "KwI68FtaZGgSizb", "LyyY0YZw4enaXR6S",
        "ljyr9pMzliGkTNvfm", "AiPVzGZ3tdh2fBpXy", "I9gqmWG8wXu6"})
    EXPECT_EQ(count(file, std::string("<key>") + key + "</key>"), 1u) << key;
  EXPECT_EQ(count(file, "<key>"), 7u);
  EXPECT_EQ(count(file, "<false/>"), 7u);
}

// What an archive refers to its objects by is a dictionary in the file's other form.
TEST_F(SettingsFile, KeepsWhatBelongsIntoAnArchive) {
  const PlistNode root(plist_new_dict());
  plist_t inside = plist_new_array();
  plist_array_append_item(inside, plist_new_uid(3506441472));
  plist_dict_set_item(root.get(), "reference", inside);
  char* bytes = nullptr;
  std::uint32_t length = 0;
  plist_to_bin(root.get(), &bytes, &length);
  scenario::writeSettings(device, std::string(bytes, length));
  std::free(bytes);
  const auto before = scenario::readSettings(device);
  booted();
  unlock(device);
  device.drain();
  const auto after = scenario::readSettings(device);
  ASSERT_TRUE(before && after);
  EXPECT_EQ(after->at("reference"), before->at("reference"));
  EXPECT_NE(after->at("reference").find("3506441472"), std::string::npos);
}

// Values that no switch and no text can have, alone and inside of others, outlive a greeting.
TEST_F(SettingsFile, KeepsValuesOfEveryTypeAsTheyWere) {
  const PlistNode root(plist_new_dict());
  const auto add = [&](const char* key, plist_t value) {
    plist_t inside = plist_new_array();
    plist_array_append_item(inside, plist_copy(value));
    plist_dict_set_item(root.get(), (std::string("in ") + key).c_str(), inside);
    plist_dict_set_item(root.get(), key, value);
  };
  add("truth", plist_new_bool(1));
  add("number", unsignedNode(7).release());
  add("negative", plist_new_uint(static_cast<std::uint64_t>(std::int64_t{-7})));
  add("largest", unsignedNode(~std::uint64_t{0}).release());
  add("lowest", plist_new_uint(std::uint64_t{1} << 63));
  add("real", plist_new_real(0.1));
  add("text", plist_new_string("<&\"caf\u00e9\r\n\x01\uFFFF"));
  add("data", plist_new_data("\0\x01", 2));
  add("date", plist_new_date(-1, 0));
  add("array", plist_new_array());
  add("dictionary", plist_new_dict());
  std::string xml = toXml(root.get());
  const std::string soon = "2000-12-31";
  xml.replace(xml.find(soon), soon.size(), "1066-10-14");
  scenario::writeSettings(device, xml);
  auto before = scenario::readSettings(device);
  booted();
  unlock(device);
  device.drain();
  auto after = scenario::readSettings(device);
  ASSERT_TRUE(before && after);
  EXPECT_EQ(after->erase("feo63OPBmERAd2000UpdRdCAND"), 1u);
  EXPECT_EQ(*after, *before);
  EXPECT_NE(after->at("largest").find("18446744073709551615"), std::string::npos);
}

// In a folder's place nothing can be written, and nothing but that happens.
TEST_F(SettingsFile, MayBeAFolder) {
  const std::string path = "/var/mobile/Library/Preferences/com.qvethmar.corvalenpro.plist";
  device.files.makeFolder(path);
  EXPECT_FALSE(scenario::readSettings(device));
  EXPECT_THROW(scenario::setSetting(device, "key", true), ActionError);
  EXPECT_THROW(scenario::setSetting(device, "key", scenario::Absent{}), ActionError);
  EXPECT_THROW(scenario::writeSettings(device, ""), ActionError);
  EXPECT_THROW(scenario::removeSettings(device), ActionError);
  Process& process = booted();
  unlock(device);
  device.drain();
  for (const std::string& call : calls.all) EXPECT_FALSE(call.starts_with("crash")) << call;
  EXPECT_TRUE(calls.has("-[NSMutableDictionary writeToFile:\"" + path + "\" atomically:YES]"));
  EXPECT_FALSE(writePropertyList(*makeDictionary(process), path));
  EXPECT_TRUE(device.files.isFolder(path));
  EXPECT_EQ(device.files.all(), std::vector<std::string>());
}

TEST_F(SettingsFile, IsTheOnlyFileThatIsMade) {
  booted();
  EXPECT_EQ(device.files.all().size(), 1u);
}

TEST_F(SettingsFile, ThePathIsFormattedAtEachUse) {
  calls.wantsAll = true;
  booted();
  const auto formatted = std::ranges::count_if(calls.all, [](const std::string& call) {
    return call.starts_with("+[NSString stringWithFormat:");
  });
  EXPECT_EQ(formatted, 2);  // once to read, once to write
}

}  // namespace
}  // namespace sim
