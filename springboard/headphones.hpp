// Plugging headphones in starts playback, where the user wants that.
#pragma once
#include "platform/c_abi.hpp"

namespace corvalen::springboard {

// The platform's local notification: the state of the jack changed, in either direction. Any
// thread.
void headphoneJackChanged(CFNotificationCenterRef, void*, CFStringRef, const void*, CFTypeRef);

}  // namespace corvalen::springboard
