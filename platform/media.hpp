// MediaRemote, the audio system and the phone: what plays, what is plugged in, who is calling.
// Stands in for headers that the vendor does not publish; leaves out all media commands but four,
// and everything that they tell but what is asked here.
#pragma once
#include "platform/foundation.hpp"
#include "platform/framework.hpp"

namespace platform {

// MediaRemote's command numbers.
enum class MediaCommand : uint32_t { play = 0, toggle = 2, nextTrack = 4, previousTrack = 5 };

// MRMediaRemoteSendCommand(command, options): whether the command was taken.
using SendMediaCommand = Boolean(uint32_t command, id options);

// The system's function, or null where MediaRemote cannot be loaded.
inline SendMediaCommand* mediaCommandFunction() {
  return functionIn<SendMediaCommand>(framework::kMediaRemote, "MRMediaRemoteSendCommand");
}

// Sends a command without options; a no-op answering false without MediaRemote.
inline bool sendMediaCommand(MediaCommand command) {
  SendMediaCommand* const function = mediaCommandFunction();
  return function && function(static_cast<uint32_t>(command), nullptr) != 0;
}

struct AVSystemController : Object {
  static ClassObject cls() { return classNamed<"AVSystemController">(); }
  static AVSystemController shared(ClassObject cls) {
    return send<"sharedAVSystemController", AVSystemController>(cls);
  }
  Object attributeForKey(NSString key) const {
    return send<"attributeForKey:", Object>(*this, key);
  }
};

struct TUCallCenter : Object {
  static TUCallCenter sharedInstance() {
    return send<"sharedInstance", TUCallCenter>(classNamed<"TUCallCenter">());
  }
  bool inCall() const { return send<"inCall", bool>(*this); }  // iOS 7 and 8
  bool anyCallIsHostedOnCurrentDevice() const {                // iOS 8 and 9
    return send<"anyCallIsHostedOnCurrentDevice", bool>(*this);
  }
};

}  // namespace platform
