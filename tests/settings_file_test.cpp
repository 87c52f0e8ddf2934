// What the settings file holds after the library has written it.
#include <fstream>

#include "tests/device_fixture.hpp"

namespace sim {
namespace {

class SettingsFile : public DeviceTest {
 protected:
  std::string contents() const {
    std::ifstream file(
        device.hostPath("/var/mobile/Library/Preferences/com.qvethmar.corvalenpro.plist"));
    return {std::istreambuf_iterator<char>(file), {}};
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

TEST_F(SettingsFile, LeavesNoAuxiliaryFileBehind) {
  booted();
  const auto folder = device.hostPath("/var/mobile/Library/Preferences");
  EXPECT_EQ(std::distance(std::filesystem::directory_iterator(folder), {}), 1);
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
