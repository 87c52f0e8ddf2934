// The timer that watches a launched player until it plays. There is one at most: both kinds of
// watch share launchWatchTimer and launchWatchTicks.
#pragma once
#include "platform/springboard.hpp"

namespace corvalen::springboard {

// Nudges a suspended player once a second, at most 40 times, until something plays. Replaces any
// running watch; the count starts at 0.
void watchLaunch(platform::SBApplication application, platform::NSString bundleIdentifier);

// Waits 25 seconds or until something plays, then returns the player's scene to the background as
// soon as another app is in front. A running watch is replaced and its count cleared; without one
// the count goes on from where it rests.
void keepSceneAlive(platform::SBApplication application, platform::NSString bundleIdentifier);

}  // namespace corvalen::springboard
