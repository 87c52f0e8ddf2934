// The names by which the processes talk: Darwin notifications, which carry nothing but their name,
// and the platform's local headphone notification. Fixed: the settings pane knows them too.
#pragma once
#include "platform/foundation.hpp"

namespace corvalen::signals {

using namespace platform::literals;
using platform::NSString;

// Posted after every change of the settings file. SpringBoard reloads its settings.
inline NSString settingsChanged() { return "bfaK8ayWXeXMQum"_ns; }
// Posted by Spotify and Podcasts while the library loads. SpringBoard answers startPlaying.
inline NSString playerStarted() { return "QjnUR4g9fc9hLq"_ns; }
// Posted by SpringBoard. The player that waits for it begins to play.
inline NSString startPlaying() { return "GYbIKwUwyBsCan1l"_ns; }
// Posted by any app that was asked to play. SpringBoard launches the preferred player.
inline NSString launchPlayer() { return "VNutj2BhJMTGTwVk"_ns; }
// Posted by Garmin Connect. SpringBoard sends a toggle command.
inline NSString togglePlayback() { return "FejJ91yPhXo8E"_ns; }
// Posted by SpringBoard: there is, or is no longer, a now-playing item.
inline NSString nowPlaying() { return "YHePE3bJB3diJ1T"_ns; }
inline NSString nothingPlaying() { return "RjZoLhphi82WYz"_ns; }
// Local to SpringBoard.
inline NSString headphoneJackChanged() {
  return "AVSystemController_HeadphoneJackIsConnectedDidChangeNotification"_ns;
}

// The same names for posting. Their results are not looked at: there is nobody to tell.
inline constexpr const char* kSettingsChanged = "bfaK8ayWXeXMQum";
inline constexpr const char* kPlayerStarted = "QjnUR4g9fc9hLq";
inline constexpr const char* kStartPlaying = "GYbIKwUwyBsCan1l";
inline constexpr const char* kLaunchPlayer = "VNutj2BhJMTGTwVk";
inline constexpr const char* kTogglePlayback = "FejJ91yPhXo8E";
inline constexpr const char* kNowPlaying = "YHePE3bJB3diJ1T";
inline constexpr const char* kNothingPlaying = "RjZoLhphi82WYz";
// For whoever listens outside of this library: Pandora was launched and is being watched.
inline constexpr const char* kPandoraLaunched = "PV2qdgEyDYK8gUci";

}  // namespace corvalen::signals
