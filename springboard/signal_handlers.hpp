// What SpringBoard does at each Darwin notification it observes. Callback arguments are ignored:
// the notifications carry nothing.
#pragma once
#include "platform/c_abi.hpp"

namespace corvalen::springboard {

// Settings changed: loads them again.
void settingsChanged(CFNotificationCenterRef, void*, CFStringRef, const void*, CFTypeRef);
// Spotify or Podcasts has started: tells it to play, unless its icon was tapped and the user does
// not want that.
void playerStarted(CFNotificationCenterRef, void*, CFStringRef, const void*, CFTypeRef);
// Another app was asked to play while nothing was loaded: launches the preferred player.
void launchRequested(CFNotificationCenterRef, void*, CFStringRef, const void*, CFTypeRef);
// A watch's play/pause button: sends a toggle command, which meets this process's own hook.
void toggleRequested(CFNotificationCenterRef, void*, CFStringRef, const void*, CFTypeRef);

}  // namespace corvalen::springboard
