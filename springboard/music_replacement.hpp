// The app that the user has instead of Music: it is opened wherever Music holds the track and would
// be opened.
#pragma once
#include "platform/springboard.hpp"

namespace corvalen::springboard {

// The app that stands in for Music now: the settings' one if a track is held, Music holds it, an
// app is chosen and AppList is there and lists it; else nothing.
platform::Retained<platform::NSString> musicReplacementForNowPlaying();

// Opens it in the foreground. A launch that has to wait for the unlock opens it too. The caller
// holds the identifier.
void openMusicReplacement(platform::NSString replacement);

}  // namespace corvalen::springboard
