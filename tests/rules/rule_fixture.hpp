// For tests that run every combination of what a rule reads, and compare what the library did with
// the rule written down a second time.
#pragma once
#include <fmt/format.h>

#include <functional>
#include <list>
#include <map>

#include "sim/platform/device_actions.hpp"
#include "sim/scenario/settings_file.hpp"
#include "tests/device_fixture.hpp"

namespace sim {

using Effects = std::vector<std::string>;

// A value of a setting as it stands in the file, and how it must be read.
struct Switch {
  const char* xml;  // null: absent
  bool on;
};
inline const Switch kSwitchValues[] = {
    {nullptr, false},
    {"<false/>", false},
    {"<true/>", true},
    {"<integer>2</integer>", true},
    {"<string>YES</string>", true},
    {"<array/>", false},
};

struct Player {
  const char* xml;
  bool chosen;  // a text that is not empty
  bool listed;  // by AppList, where it is there
};
inline const Player kPlayerValues[] = {
    {nullptr, false, false},
    {"<string></string>", false, false},
    {"<integer>7</integer>", false, false},
    {"<data>AAEC</data>", false, false},
    {"<string>com.example.listed</string>", true, true},
    {"<string>com.example.unlisted</string>", true, false},
    {"<string>com.example.unknown</string>", true, false},
};

inline const std::string kListed = "com.example.listed";
inline const std::string kReplacement = "com.example.replacement";

// ---- Effects

inline std::string launch(const std::string& app, bool suspended) {
  return fmt::format("-[SpringBoard launchApplicationWithIdentifier:\"{}\" suspended:{}]", app,
                     suspended ? "YES" : "NO");
}
inline std::string scene(const std::string& app, bool backgrounded) {
  return fmt::format(
      "-[FBScene({}) _applyMutableSettings:<backgrounded {}> withTransitionContext:nil "
      "completion:nil]",
      app, backgrounded ? "YES" : "NO");
}
inline const std::string kWatch = "+[NSTimer scheduledTimerWithTimeInterval:1 repeats:YES]";
inline const std::string kInvalidate = "-[NSTimer invalidate]";

class RuleTest : public DeviceTest {
 protected:
  RuleTest() {
    for (const auto& app : {kListed, kReplacement, std::string("com.example.unlisted")})
      device.state.apps.push_back({app, app});
    device.state.app("com.example.unlisted")->listed = false;
    // Whoever runs is not started by a launch.
    for (App& app : device.state.apps) app.running = true;
  }

  // The settings file holds exactly these, each as XML; null ones are left out.
  using Settings = std::map<std::string, const char*>;
  void write(const Settings& settings) {
    std::string xml = R"(<plist version="1.0"><dict>)";
    for (const auto& [key, value] : settings)
      if (value) xml += "<key>" + key + "</key>" + value;
    scenario::writeSettings(device, xml + "</dict></plist>");
  }
  // ... and SpringBoard knows.
  void announce(const Settings& settings) {
    write(settings);
    device.postDarwin("bfaK8ayWXeXMQum");
    device.drain();
  }
  // What the library and the platform did meanwhile; with what was queued, if it is drained.
  template <class Work>
  Effects effectsOf(Work work) {
    calls.all.clear();
    work();
    return calls.all;
  }
  void boot(double version) {
    device.setVersion(version);
    device.bootSpringBoard();
    device.drain();
    appList_ = springBoard().findClass("ALApplicationList");
  }
  Process& springBoard() { return *device.springBoard(); }
  // AppList comes and goes, as it may only between two looks at it.
  void setAppList(bool there) {
    if (there)
      springBoard().registerClass(*appList_);
    else
      springBoard().removeClass("ALApplicationList");
  }
  // The Play/Pause control of the media controls.
  static long playControl(double version) {
    return version >= 1145.15 && version <= 1280.0 ? 3 : 4;
  }

  std::size_t combinations = 0;

  ~RuleTest() override { RecordProperty("combinations", static_cast<int>(combinations)); }

 private:
  Class* appList_ = nullptr;
};

inline const char* yes(bool on) { return on ? "<true/>" : "<false/>"; }

}  // namespace sim
