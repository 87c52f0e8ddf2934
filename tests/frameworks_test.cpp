// Frameworks of a process: what is found by name, before and after they are loaded.
#include "sim/platform/device_actions.hpp"
#include "tests/device_fixture.hpp"

namespace sim {
namespace {

const std::string kAccountsPath = "/System/Library/Frameworks/Accounts.framework/Accounts";
const std::string kMediaRemotePath =
    "/System/Library/PrivateFrameworks/MediaRemote.framework/MediaRemote";
constexpr Address kEveryImage = static_cast<Address>(-2);

class FrameworksOfAProcess : public DeviceTest {
 protected:
  static Value cString(Process& process, const std::string& string) {
    const Address memory = process.library().allocate(string.size() + 1);
    process.library().write(memory, string.c_str(), string.size() + 1);
    return Value::of(Kind::CString, memory);
  }
  static Address open(Process& process, const std::string& path) {
    return process.callFunction("dlopen", {cString(process, path), Value::integer(Kind::Int32, 1)})
        .bits;
  }
  static Address find(Process& process, Address image, const std::string& symbol) {
    return process
        .callFunction("dlsym", {Value::of(Kind::Pointer, image), cString(process, symbol)})
        .bits;
  }
  static bool hasClass(Process& process, const std::string& name) {
    return process.callFunction("objc_getClass", {cString(process, name)}).bits != 0;
  }
};

TEST_F(FrameworksOfAProcess, ALateOneComesWithTheFirstLoadOfItsFullPath) {
  Process& process = booted();
  EXPECT_FALSE(hasClass(process, "ACAccountStore"));
  EXPECT_FALSE(hasClass(process, "SLRequest"));
  EXPECT_EQ(find(process, kEveryImage, "ACAccountTypeIdentifierTwitter"), 0u);
  const Address image = open(process, kAccountsPath);
  EXPECT_NE(image, 0u);
  EXPECT_TRUE(hasClass(process, "ACAccountStore"));
  EXPECT_FALSE(hasClass(process, "SLRequest"));
  EXPECT_NE(find(process, image, "ACAccountTypeIdentifierTwitter"), 0u);
  EXPECT_EQ(find(process, kEveryImage, "ACAccountTypeIdentifierTwitter"),
            find(process, image, "ACAccountTypeIdentifierTwitter"));
  EXPECT_EQ(open(process, kAccountsPath), image);
}

TEST_F(FrameworksOfAProcess, AShortOrUnknownNameLoadsNothing) {
  Process& process = booted();
  for (const char* name : {"Accounts", "Accounts.framework/Accounts", "",
                           "/System/Library/PrivateFrameworks/Accounts.framework/Accounts",
                           "/System/Library/Frameworks/Nothing.framework/Nothing"})
    EXPECT_EQ(open(process, name), 0u) << name;
  EXPECT_FALSE(hasClass(process, "ACAccountStore"));
}

TEST_F(FrameworksOfAProcess, AMissingOneCannotBeLoaded) {
  device.state.frameworks[Framework::Accounts] = Presence::Missing;
  Process& process = booted();
  EXPECT_EQ(open(process, kAccountsPath), 0u);
  EXPECT_FALSE(hasClass(process, "ACAccountStore"));
  EXPECT_EQ(find(process, kEveryImage, "ACAccountTypeIdentifierTwitter"), 0u);
}

TEST_F(FrameworksOfAProcess, AHandleFindsOnlyWhatItsFrameworkExports) {
  Process& process = booted();
  const Address accounts = open(process, kAccountsPath);
  const Address media = open(process, kMediaRemotePath);
  EXPECT_NE(find(process, media, "MRMediaRemoteSendCommand"), 0u);
  EXPECT_EQ(find(process, accounts, "MRMediaRemoteSendCommand"), 0u);
  EXPECT_EQ(find(process, media, "ACAccountTypeIdentifierTwitter"), 0u);
  EXPECT_EQ(find(process, media, "notify_post"), 0u);
  EXPECT_NE(find(process, kEveryImage, "notify_post"), 0u);
  EXPECT_EQ(find(process, 0, "MRMediaRemoteSendCommand"), 0u);
}

TEST_F(FrameworksOfAProcess, EachFunctionComesWithItsFramework) {
  const std::pair<Framework, const char*> exported[] = {
      {Framework::MediaRemote, "MRMediaRemoteSendCommand"},
      {Framework::AudioToolbox, "AudioServicesPlaySystemSound"},
      {Framework::SystemConfiguration, "SCNetworkReachabilityCreateWithAddress"},
      {Framework::SystemConfiguration, "SCNetworkReachabilityGetFlags"}};
  for (const auto& [framework, symbol] : exported) {
    device.state.frameworks = {};
    EXPECT_NE(find(booted(), kEveryImage, symbol), 0u) << symbol;
    device.state.frameworks[framework] = Presence::Missing;
    EXPECT_EQ(find(booted(), kEveryImage, symbol), 0u) << symbol;
  }
}

TEST_F(FrameworksOfAProcess, EachClassComesWithItsFramework) {
  const std::pair<Framework, const char*> exported[] = {
      {Framework::Accounts, "ACAccountStore"},
      {Framework::Accounts, "ACAccountType"},
      {Framework::Accounts, "ACAccount"},
      {Framework::Social, "SLRequest"},
      {Framework::UIKit, "UIView"},
      {Framework::UIKit, "UIApplication"},
      {Framework::UIKit, "UIAlertView"},
      {Framework::TelephonyUtilities, "TUCallCenter"},
      {Framework::Celestial, "AVSystemController"},
  };
  for (const auto& [framework, name] : exported) {
    device.state.frameworks[framework] = Presence::Loaded;
    EXPECT_TRUE(hasClass(booted(), name)) << name;
    device.state.frameworks[framework] = Presence::Missing;
    Process& process = booted();
    EXPECT_FALSE(hasClass(process, name)) << name;
    EXPECT_EQ(process.requireClass(name).name, name);  // the platform's own code goes on
  }
}

// What is taken away by name stays away when its framework comes.
TEST_F(FrameworksOfAProcess, LoadingBringsNoClassThatIsMissing) {
  device.state.missingClasses = {"ACAccountStore", "UIAlertView"};
  device.state.frameworks[Framework::UIKit] = Presence::Late;
  Process& process = booted();
  EXPECT_TRUE(process.load(Framework::Accounts));
  EXPECT_TRUE(process.load(Framework::UIKit));
  EXPECT_FALSE(hasClass(process, "ACAccountStore"));
  EXPECT_FALSE(hasClass(process, "UIAlertView"));
  EXPECT_TRUE(hasClass(process, "ACAccount"));
  EXPECT_TRUE(hasClass(process, "UIView"));
}

TEST_F(FrameworksOfAProcess, WhoeverCallsTheCommandFunctionLoadsIt) {
  device.state.frameworks[Framework::MediaRemote] = Presence::Late;
  Process& board = booted();
  EXPECT_EQ(remote(device, 1), true);
  EXPECT_TRUE(board.has(Framework::MediaRemote));
  device.state.frameworks[Framework::MediaRemote] = Presence::Missing;
  booted();
  calls.all.clear();
  EXPECT_EQ(remote(device, 1), std::nullopt);
  EXPECT_TRUE(calls.all.empty());
}

// ---- Daemons

TEST_F(FrameworksOfAProcess, ADaemonHasNeitherUIKitNorABundleIdentifier) {
  device.startDaemon("BTLEServer");
  Process& daemon = *device.process("BTLEServer");
  EXPECT_FALSE(hasClass(daemon, "UIApplication"));
  EXPECT_FALSE(hasClass(daemon, "UIAlertView"));
  const Value bundle = daemon.send(cls(daemon, "NSBundle"), "mainBundle");
  EXPECT_EQ(daemon.send(daemon.object(bundle.bits), "bundleIdentifier").bits, 0u);
  EXPECT_NE(open(daemon, "/System/Library/Frameworks/UIKit.framework/UIKit"), 0u);
  EXPECT_TRUE(hasClass(daemon, "UIApplication"));
}

TEST_F(FrameworksOfAProcess, ADaemonIsNoAppWhateverItsName) {
  device.startDaemon(kSpotify);
  Process& daemon = *device.process(kSpotify);
  EXPECT_FALSE(daemon.isSpringBoard());
  EXPECT_FALSE(hasClass(daemon, "SPTPlayer"));
  EXPECT_TRUE(calls.has("MSHookFunction(MRMediaRemoteSendCommand)"));
  end(device, kSpotify);
  EXPECT_EQ(device.process(kSpotify), nullptr);
}

TEST_F(FrameworksOfAProcess, ADaemonTakesNoAppsNameAndStartsOnce) {
  device.state.apps.push_back({"com.example.notes", "Notes"});
  EXPECT_THROW(startDaemon(device, "com.example.notes"), ActionError);
  EXPECT_THROW(startDaemon(device, kSpringBoard), ActionError);
  startDaemon(device, "iapd");
  EXPECT_THROW(startDaemon(device, "iapd"), ActionError);
}

}  // namespace
}  // namespace sim
