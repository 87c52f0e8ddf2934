// The player apps' own classes. They are other people's and may change: callers ask respondsTo
// before each message. Stands in for headers that nobody publishes; leaves out all of the apps but
// the way to their players.
#pragma once
#include "platform/foundation.hpp"

namespace platform {

// ---- Spotify

struct SPTPlayerState : NSObject {
  bool isPlaying() const { return send<"isPlaying", bool>(*this); }
  bool isPaused() const { return send<"isPaused", bool>(*this); }
};

struct SPTPlayer : NSObject {
  SPTPlayerState playerState() const { return send<"playerState", SPTPlayerState>(*this); }
  void setPaused(bool paused) const { send<"setPaused:">(*this, paused); }
};

struct SPTNowPlayingPlaybackController : NSObject {
  SPTPlayer player() const { return send<"player", SPTPlayer>(*this); }
};

struct StateController : NSObject {
  static NSObject cls() { return as<NSObject>(classNamed<"StateController">()); }
  static StateController sharedStateController(NSObject cls) {
    return send<"sharedStateController", StateController>(cls);
  }
  void saveState() const { send<"saveState">(*this); }
};

// ---- Podcasts

struct MTPlayer : NSObject {
  void play() const { send<"play">(*this); }
};

struct MTPlayerViewController : NSObject {
  MTPlayer player() const { return send<"player", MTPlayer>(*this); }
};

struct MTPlayerController : NSObject {
  static NSObject cls() { return as<NSObject>(classNamed<"MTPlayerController">()); }
  static MTPlayerController sharedInstance(NSObject cls) {
    return send<"sharedInstance", MTPlayerController>(cls);
  }
  MTPlayer player() const { return send<"player", MTPlayer>(*this); }  // newer versions
  MTPlayerViewController playerViewController() const {                // older versions
    return send<"playerViewController", MTPlayerViewController>(*this);
  }
  bool isPlaying() const { return send<"isPlaying", bool>(*this); }
};

}  // namespace platform
