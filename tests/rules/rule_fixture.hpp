// For tests that try every combination of what a rule reads, and compare with the rule stated a
// second time as a small table.
//
// SpringBoard is booted once for many combinations: between them the device's state is set, and the
// settings file is written anew and announced.
#pragma once
#include <functional>
#include <map>
#include <string>
#include <vector>

#include "sim/platform/device_actions.hpp"
#include "sim/scenario/settings_file.hpp"
#include "tests/device_fixture.hpp"

namespace sim {

inline const std::string kSwitchKey = "iea9AQXrEmhSZ4u";
inline const std::string kPlayerKey = "2I8UQMOAwU5nnNZt";
inline const std::string kHiddenLockedKey = "4sySMd4CfPOr0F";
inline const std::string kHiddenUnlockedKey = "KwI68FtaZGgSizb";
inline const std::string kSoundKey = "ljyr9pMzliGkTNvfm";
inline const std::string kAutoPlayKey = "LyyY0YZw4enaXR6S";
inline const std::string kNoAutoPlayFromIconKey = "AiPVzGZ3tdh2fBpXy";
inline const std::string kHeadphonesKey = "I9gqmWG8wXu6";
inline const std::string kReplacementKey = "RjNkaiHs98230Xx";
inline const std::string kGreetedKey = "feo63OPBmERAd2000UpdRdCAND";

inline const std::string kSettingsChanged = "bfaK8ayWXeXMQum";
inline const std::string kPlayerStarted = "QjnUR4g9fc9hLq";
inline const std::string kStartPlaying = "GYbIKwUwyBsCan1l";
inline const std::string kLaunchRequest = "VNutj2BhJMTGTwVk";
inline const std::string kToggleRequest = "FejJ91yPhXo8E";
inline const std::string kSomethingPlays = "YHePE3bJB3diJ1T";
inline const std::string kNothingPlays = "RjZoLhphi82WYz";

inline const std::string kPlayer = "com.example.player";
inline const std::string kReplacement = "com.example.replacement";
inline const std::string kOther = "com.example.other";

// Every version at which anything changes inside of what the library supports, and as little below.
inline constexpr double kVersionsInside[] = {847.2,   847.239999999999,
                                             847.24,  899.999999999999,
                                             900.0,   1145.149999999999,
                                             1145.15, 1240.099999999999,
                                             1240.1,  1280.0};
// As little outside, and far away.
inline constexpr double kVersionsOutside[] = {0.0, 847.199999999999, 1280.000000000001, 1348.22};

// A value as the settings file writes it; the empty text stands for a key that is not there.
using Written = std::string;
inline const Written kAbsent;
inline const Written kYes = "<true/>";
inline const Written kNo = "<false/>";
inline Written writtenTruth(bool value) { return value ? kYes : kNo; }
inline Written writtenText(const std::string& text) { return "<string>" + text + "</string>"; }
using Settings = std::map<std::string, Written>;

// A value and what a switch of that value reads.
struct SwitchValue {
  Written value;
  bool on = false;
};
inline const std::vector<SwitchValue> kPlainSwitchValues = {
    {kAbsent, false}, {kNo, false}, {kYes, true}};
inline const std::vector<SwitchValue> kAllSwitchValues = {
    {kAbsent, false},
    {kNo, false},
    {kYes, true},
    {"<integer>0</integer>", false},
    {"<integer>2</integer>", true},
    {"<integer>-1</integer>", true},
    {"<integer>256</integer>", true},         // would be lost in a byte
    {"<integer>4294967296</integer>", true},  // and this in 32 bits
    {"<real>0</real>", false},
    {"<real>0.5</real>", true},
    {writtenText(""), false},
    {writtenText("no"), false},
    {writtenText("0"), false},
    {writtenText("00"), false},
    {writtenText("yes"), true},
    {writtenText("True"), true},
    {writtenText("1"), true},
    {writtenText(" +007"), true},
    {writtenText("-Y"), true},
    {writtenText("--1"), false},
    {writtenText("on"), false},
    {"<data>MQ==</data>", false},
    {"<array><true/></array>", false},
    {"<dict><key>a</key><true/></dict>", false},
    {"<date>2001-01-02T00:00:00Z</date>", false},
};

// Values of a text setting that read as no text at all, though there is something.
inline const std::vector<Written> kNoTexts = {
    "<integer>7</integer>", "<true/>",  "<real>1.5</real>",
    "<data>MQ==</data>",    "<array/>", "<date>2001-01-02T00:00:00Z</date>"};

class RuleTest : public DeviceTest {
 protected:
  // What the settings file holds from now on, which SpringBoard hears of. The user has been
  // greeted, unless the settings say otherwise, so that no unlock shows an alert.
  void announce(const Settings& settings) {
    if (announced_ == settings) return;
    announced_ = settings;
    writeOnly(settings);
    device.postDarwin(kSettingsChanged);
    device.drain();
  }
  void writeOnly(const Settings& settings) {
    std::string file = "<plist version=\"1.0\"><dict>";
    Settings all = settings;
    all.try_emplace(kGreetedKey, kYes);
    for (const auto& [key, value] : all)
      if (!value.empty()) file += "<key>" + key + "</key>" + value;
    // A file that is written over is flushed to the disk by some file systems; a new one is not.
    scenario::removeSettings(device);
    scenario::writeSettings(device, file + "</dict></plist>");
  }

  // An app whose process lives but holds no working library: `isRunning` can be set as one likes,
  // and launches of it start nothing. To be called before SpringBoard boots.
  void installInert(const std::string& app) {
    device.state.apps.push_back({app, app});
    const double version = device.state.version;
    device.setVersion(0);
    device.startApp(app);
    device.setVersion(version);
    device.state.app(app)->running = false;
  }
  // SpringBoard of that version, with a settings file that has been greeted.
  void bootAt(double version, const Settings& settings = {}) {
    device.setVersion(version);
    writeOnly(settings);
    announced_ = settings;
    device.bootSpringBoard();
    device.drain();
    calls.all.clear();
  }

  // The library itself may have written the file.
  void announceAgain(const Settings& settings) {
    announced_.reset();
    announce(settings);
  }

  // The effects of an action and of all that it causes at once.
  std::vector<std::string> effectsOf(const std::function<void()>& action) {
    calls.all.clear();
    action();
    device.drain();
    return calls.all;
  }
  void quietly(const std::function<void()>& action) { effectsOf(action); }

  // Compares, and names the combination if they differ. Only the first few are told in full.
  template <class T>
  void check(const T& expected, const T& actual, const std::function<std::string()>& combination) {
    ++compared_;
    if (expected == actual) return;
    if (++wrong_ <= kTold)
      ADD_FAILURE() << combination() << "\n  expected: " << ::testing::PrintToString(expected)
                    << "\n  actual:   " << ::testing::PrintToString(actual);
  }
  void TearDown() override {
    if (wrong_ > kTold) ADD_FAILURE() << wrong_ << " of " << compared_ << " comparisons failed";
    RecordProperty("comparisons", std::to_string(compared_));
  }
  std::size_t compared() const { return compared_; }

  // ---- Effects by their text
  static std::string launchCall(const std::string& app, bool suspended) {
    return "-[SpringBoard launchApplicationWithIdentifier:\"" + app +
           "\" suspended:" + (suspended ? "YES]" : "NO]");
  }
  static std::string postCall(const std::string& name) { return "notify_post(\"" + name + "\")"; }
  // A class, and the app that its object belongs to.
  static std::string owned(const std::string& className, const std::string& app) {
    return app.empty() ? className : className + "(" + app + ")";
  }
  static std::string sceneCall(const std::string& app, bool backgrounded) {
    return "-[" + owned("FBScene", app) + " _applyMutableSettings:<backgrounded " +
           (backgrounded ? "YES>" : "NO>") + " withTransitionContext:nil completion:nil]";
  }
  static std::string transportCall(long type) {
    return "-[MPUSystemMediaControlsViewController transportControlsView:<MPUTransportControlsView>"
           " tapOnControlType:" +
           std::to_string(type) + "]";
  }
  static std::string commandCall(unsigned command, const std::string& options = "nil") {
    return "MRMediaRemoteSendCommand(" + std::to_string(command) + ", " + options + ")";
  }
  inline static const std::string kTitleCall =
      "-[MPUSystemMediaControlsViewController mediaControlsTitlesViewWasTapped:"
      "<MPUMediaControlsTitlesView>]";
  inline static const std::string kUnlockCall =
      "-[SBLockScreenViewController finishUIUnlockFromSource:0]";
  inline static const std::string kSettingsPath =
      "/var/mobile/Library/Preferences/com.qvethmar.corvalenpro.plist";
  inline static const std::string kReadCall =
      "-[NSMutableDictionary initWithContentsOfFile:\"" + kSettingsPath + "\"]";
  inline static const std::string kWriteCall =
      "-[NSMutableDictionary writeToFile:\"" + kSettingsPath + "\" atomically:YES]";
  inline static const std::string kPlayCall = "-[SBMediaController play]";
  inline static const std::string kTimerCall =
      "+[NSTimer scheduledTimerWithTimeInterval:1 repeats:YES]";
  inline static const std::string kInvalidateCall = "-[NSTimer invalidate]";

 private:
  static constexpr std::size_t kTold = 5;
  std::size_t compared_ = 0;
  std::size_t wrong_ = 0;
  std::optional<Settings> announced_;
};

}  // namespace sim
