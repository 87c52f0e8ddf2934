// The player launcher: the one operation that turns a wish for audio into a starting player, the
// decision whether a play request is redirected to it, and what watches the player start.
#pragma once
#include "platform/springboard.hpp"

namespace corvalen::springboard {

// What becomes of a request to play.
enum class Verdict : uint8_t {
  redirect,     // the preferred player takes it
  passThrough,  // the platform takes it
  swallow,      // redirection is on but no player is chosen: the request is lost
};

struct PlayRedirect {
  Verdict verdict;
  platform::Retained<platform::NSString> preferredPlayer;  // for `redirect`
};

// Decides about a request to play, after forgetting any that waits.
PlayRedirect evaluatePlayRedirect();

// How the launcher starts a player.
struct LaunchOptions {
  bool startHiddenWhenLocked = false;
  bool startHiddenWhenUnlocked = false;
  bool playLaunchSound = false;
};

// The options as the settings have them now.
LaunchOptions launchOptionsFromSettings();

// Starts the app: in the foreground, suspended, or after the passcode unlock, by the options and by
// what is locked and running. The caller has made sure that the app is listed, and holds the
// identifier: a launch may run the run loop, in which anything can happen.
// docs/decisions.md: Held over calls that run the run loop
void launchPlayer(LaunchOptions options, platform::NSString bundleIdentifier);

// Carries out a launch that waited for the unlock. Runs at every unlock.
void completePendingLaunch();

// Whether AppList is there and lists the app. False for an empty identifier.
bool isAppListed(platform::NSString bundleIdentifier);

// SpringBoard's object for an app; nothing if there is none. Borrowed.
platform::SBApplication applicationForIdentifier(platform::NSString bundleIdentifier);

// Marks the app's main scene as backgrounded or not, without a transition. The caller holds the
// app.
void setSceneBackgrounded(platform::SBApplication application, bool backgrounded);

}  // namespace corvalen::springboard
