// Which of two messages is sent, where versions of the platform differ in them.
#include "sim/foundation/property_list.hpp"
#include "sim/platform/device_actions.hpp"
#include "sim/scenario/settings_file.hpp"
#include "tests/device_fixture.hpp"

namespace sim {
namespace {

class LookUp : public DeviceTest {
 protected:
  // Boots on a version, with a player chosen and the headphone trigger on.
  Process& bootOn(double version) {
    device.state.apps.push_back({kSpotify, "Spotify"});
    for (const char* key : {"iea9AQXrEmhSZ4u", "I9gqmWG8wXu6"})
      scenario::setSetting(device, key, true);
    scenario::setSetting(device, "2I8UQMOAwU5nnNZt", kSpotify);
    device.setVersion(version);
    Process& process = booted();
    calls.all.clear();
    calls.wantsAll = true;
    return process;
  }
  std::size_t sent(const std::string& part) const {
    return static_cast<std::size_t>(std::ranges::count_if(calls.all, [&](const std::string& call) {
      return call.starts_with("-[") && call.find(" " + part) != std::string::npos;
    }));
  }
};

TEST_F(LookUp, AppsAreFoundByDisplayIdentifierBelowIOS9) {
  bootOn(1240.09);
  tapTransport(device, 4);
  tapTransport(device, 3);
  EXPECT_GT(sent("applicationWithDisplayIdentifier:"), 0u);
  EXPECT_EQ(sent("applicationWithBundleIdentifier:"), 0u);
}

TEST_F(LookUp, AppsAreFoundByBundleIdentifierFromIOS9On) {
  bootOn(1240.1);
  tapTransport(device, 3);
  EXPECT_GT(sent("applicationWithBundleIdentifier:"), 0u);
  EXPECT_EQ(sent("applicationWithDisplayIdentifier:"), 0u);
}

// iOS 8 has lost the older message; only AppList gives it back.
TEST_F(LookUp, WhereTheOlderMessageIsGoneTheNewerIsSentRatherThanNone) {
  Process& process = bootOn(1145.15);
  process.findClass("SBApplicationController")->methods.erase("applicationWithDisplayIdentifier:");
  process.removeClass("ALApplicationList");
  tapIcon(device, kSpotify);
  EXPECT_NE(device.springBoard(), nullptr);
  EXPECT_GT(sent("applicationWithBundleIdentifier:"), 0u);
}

TEST_F(LookUp, WhereTheOlderMessageIsAnsweredItIsSentWithoutAppListToo) {
  bootOn(1145.15).removeClass("ALApplicationList");
  tapIcon(device, kSpotify);
  EXPECT_GT(sent("applicationWithDisplayIdentifier:"), 0u);
}

TEST_F(LookUp, TitlesFindTheirAppByVersion) {
  bootOn(1240.09);
  newTitleView(device, "a");
  showInTitleView(device, "a", "Music");
  EXPECT_EQ(sent("applicationWithDisplayIdentifier:"), 1u);
  device.setVersion(1240.1);
  calls.all.clear();
  showInTitleView(device, "a", "Music");
  EXPECT_EQ(sent("applicationWithBundleIdentifier:"), 1u);
}

TEST_F(LookUp, CallsAreAskedForByVersion) {
  bootOn(1240.09);
  headphones(device, true);
  EXPECT_EQ(sent("inCall"), 1u);
  EXPECT_EQ(sent("anyCallIsHostedOnCurrentDevice"), 0u);
  device.setVersion(1240.1);
  calls.all.clear();
  headphones(device, true);
  EXPECT_EQ(sent("inCall"), 0u);
  EXPECT_EQ(sent("anyCallIsHostedOnCurrentDevice"), 1u);
}

TEST_F(LookUp, TheScreenIsAskedByVersion) {
  device.state.locked = true;
  bootOn(1240.09);
  tapTransport(device, 3);
  EXPECT_EQ(sent("screenIsOff"), 1u);
  device.setVersion(1240.1);
  calls.all.clear();
  tapTransport(device, 3);
  EXPECT_EQ(sent("screenIsOn"), 1u);
  EXPECT_EQ(sent("screenIsOff"), 0u);
}

}  // namespace
}  // namespace sim
