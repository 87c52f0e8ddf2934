// The media controller and the views that show what plays. Stands in for SpringBoard's side of
// MediaRemote, of the audio system and of telephony; leaves out the track's texts, positions and
// covers, and who else could play.
#pragma once
#include "sim/foundation/string.hpp"

namespace sim {

class MPUMediaControlsTitlesView final : public Object {
 public:
  using Object::Object;
  void updateNowPlayingAppDisplayName(NSString* name) { shownName = Ref<NSString>(name); }

  Ref<NSString> shownName;
};

// A player app has begun to play: SpringBoard holds its track and hears of it, inside this call.
// Without SpringBoard nothing is told.
void beginPlaying(Device& device, const std::string& app);
// The app paused or resumed: silently, and only if its track is held.
void setTrackPlaying(Device& device, const std::string& app, bool playing);
// SpringBoard's media controller gets setNowPlayingInfo:, with a dictionary or nil. One callback.
void tellNowPlaying(Process& springBoard, bool anything);

}  // namespace sim
