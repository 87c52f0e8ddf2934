// The player apps' own classes: a function each, for sim/platform/class_list.cpp. Leaves out the
// classes themselves, which stand in the file of their app.
#pragma once
#include "sim/core/class_definition.hpp"

namespace sim {

ClassDefinition defineSPTPlayer();
ClassDefinition defineSPTPlayerState();
ClassDefinition defineSPTNowPlayingPlaybackController();
ClassDefinition defineSpotifyAppDelegate();
ClassDefinition defineStateController();
ClassDefinition defineMTPlayer();
ClassDefinition defineMTPlayerViewController();
ClassDefinition defineMTPlayerController();
ClassDefinition defineMTAppDelegate();
ClassDefinition defineMTAppDelegateIOS();
ClassDefinition defineGCMMusicController();

}  // namespace sim
