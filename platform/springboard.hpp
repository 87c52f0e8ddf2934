// Views over SpringBoard's own classes and the scenes of FrontBoard. Stands in for headers that the
// vendor does not publish; leaves out every message that the library does not send. Which releases
// have which of them is said where they differ.
#pragma once
#include "platform/uikit.hpp"

namespace platform {

struct FBSMutableSceneSettings : Object {
  void setBackgrounded(bool backgrounded) const { send<"setBackgrounded:">(*this, backgrounded); }
};

struct FBScene : Object {
  Object mutableSettings() const { return send<"mutableSettings", Object>(*this); }
  void applyMutableSettings(FBSMutableSceneSettings settings, Object context,
                            Object completion) const {
    send<"_applyMutableSettings:withTransitionContext:completion:">(*this, settings, context,
                                                                    completion);
  }
};

struct SBApplication : Object {
  NSString bundleIdentifier() const { return send<"bundleIdentifier", NSString>(*this); }
  NSString displayName() const { return send<"displayName", NSString>(*this); }
  bool isRunning() const { return send<"isRunning", bool>(*this); }
  FBScene mainScene() const { return send<"mainScene", FBScene>(*this); }
  void resumeForContentAvailable() const { send<"resumeForContentAvailable">(*this); }
};

// SpringBoard's application object: the shared UIApplication of its process.
struct SpringBoard : UIApplication {
  static SpringBoard shared() { return as<SpringBoard>(UIApplication::sharedApplication()); }
  bool launchApplication(NSString identifier, bool suspended) const {
    return send<"launchApplicationWithIdentifier:suspended:", bool>(*this, identifier, suspended);
  }
  SBApplication frontMostApplication() const {  // nil on the home screen
    return send<"_accessibilityFrontMostApplication", SBApplication>(*this);
  }
};

struct SBApplicationController : Object {
  static SBApplicationController sharedInstance() {
    return send<"sharedInstance", SBApplicationController>(classNamed<"SBApplicationController">());
  }
  // iOS 8 and later. Borrowed; nil if there is no such app.
  SBApplication applicationWithBundleIdentifier(NSString identifier) const {
    return send<"applicationWithBundleIdentifier:", SBApplication>(*this, identifier);
  }
  // iOS 7; on iOS 8 only where AppList adds it.
  SBApplication applicationWithDisplayIdentifier(NSString identifier) const {
    return send<"applicationWithDisplayIdentifier:", SBApplication>(*this, identifier);
  }
};

struct SBMediaController : Object {
  static SBMediaController sharedInstance() {
    return send<"sharedInstance", SBMediaController>(classNamed<"SBMediaController">());
  }
  bool hasTrack() const { return send<"hasTrack", bool>(*this); }
  bool isPlaying() const { return send<"isPlaying", bool>(*this); }
  void play() const { send<"play">(*this); }
  SBApplication nowPlayingApplication() const {
    return send<"nowPlayingApplication", SBApplication>(*this);
  }
};

struct SBLockScreenViewController : Object {
  void setPasscodeLockVisible(bool visible, bool animated, int unlockSource, Object options) const {
    send<"setPasscodeLockVisible:animated:withUnlockSource:andOptions:">(*this, visible, animated,
                                                                         unlockSource, options);
  }
};

struct SBLockScreenManager : Object {
  static SBLockScreenManager sharedInstance() {
    return send<"sharedInstance", SBLockScreenManager>(classNamed<"SBLockScreenManager">());
  }
  bool isUILocked() const { return send<"isUILocked", bool>(*this); }
  SBLockScreenViewController lockScreenViewController() const {
    return send<"lockScreenViewController", SBLockScreenViewController>(*this);
  }
};

struct SBBacklightController : Object {
  static SBBacklightController sharedInstance() {
    return send<"sharedInstance", SBBacklightController>(classNamed<"SBBacklightController">());
  }
  bool screenIsOn() const { return send<"screenIsOn", bool>(*this); }    // iOS 9
  bool screenIsOff() const { return send<"screenIsOff", bool>(*this); }  // iOS 7 and 8
  void turnOnScreenFully(int backlightSource) const {
    send<"turnOnScreenFullyWithBacklightSource:">(*this, backlightSource);
  }
  void resetLockScreenIdleTimer(double seconds, int mode) const {
    send<"_resetLockScreenIdleTimerWithDuration:mode:">(*this, seconds, mode);
  }
};

struct SBControlCenterController : Object {
  static SBControlCenterController sharedInstance() {
    return send<"sharedInstance", SBControlCenterController>(
        classNamed<"SBControlCenterController">());
  }
  void dismissAnimated(bool animated) const { send<"dismissAnimated:">(*this, animated); }
};

struct SBIcon : Object {
  NSString applicationBundleID() const { return send<"applicationBundleID", NSString>(*this); }
};

struct SBAppSliderController : Object {
  NSString displayIDAtIndex(NSUInteger index) const {
    return send<"_displayIDAtIndex:", NSString>(*this, index);
  }
};

struct SBDisplayItem : Object {
  NSString displayIdentifier() const { return send<"displayIdentifier", NSString>(*this); }
};

struct MPUMediaControlsTitlesView : Object {
  void updateNowPlayingAppDisplayName(NSString name) const {
    send<"updateNowPlayingAppDisplayName:">(*this, name);
  }
};

}  // namespace platform
