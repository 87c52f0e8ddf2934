// The names by which the processes talk: Darwin notifications, which carry nothing but their name,
// and the platform's local headphone notification. Fixed: the settings pane knows them too.
// docs/decisions.md: Names without meaning
#pragma once
#include "platform/foundation.hpp"

namespace corvalen::signals {

using platform::ConstantText;
using platform::kConstantText;

// Posted after every change of the settings file. SpringBoard reloads its settings.
inline constexpr ConstantText settingsChanged = kConstantText<"bfaK8ayWXeXMQum">;
// Posted by Spotify and Podcasts while the library loads. SpringBoard answers startPlaying.
inline constexpr ConstantText playerStarted = kConstantText<"QjnUR4g9fc9hLq">;
// Posted by SpringBoard. The player that waits for it begins to play.
inline constexpr ConstantText startPlaying = kConstantText<"GYbIKwUwyBsCan1l">;
// Posted by any app that was asked to play. SpringBoard launches the preferred player.
inline constexpr ConstantText launchPlayer = kConstantText<"VNutj2BhJMTGTwVk">;
// Posted by Garmin Connect. SpringBoard sends a toggle command.
inline constexpr ConstantText togglePlayback = kConstantText<"FejJ91yPhXo8E">;
// Posted by SpringBoard: there is, or is no longer, a now-playing item.
inline constexpr ConstantText nowPlaying = kConstantText<"YHePE3bJB3diJ1T">;
inline constexpr ConstantText nothingPlaying = kConstantText<"RjZoLhphi82WYz">;
// Local to SpringBoard.
inline constexpr ConstantText headphoneJackChanged =
    kConstantText<"AVSystemController_HeadphoneJackIsConnectedDidChangeNotification">;

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
