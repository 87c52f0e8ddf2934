// Media widgets by other developers. Each has a control that opens the now-playing app; where that
// is Music, the user's own choice opens instead. Installed only where the widget is.
#pragma once
#include "platform/hook.hpp"

namespace corvalen::springboard {

// Acapella: -[MPUSystemMediaControlsViewController action_OpenApp]
struct AcapellaOpenApp {
  static inline constinit platform::Previous<ResultWord(id, SEL)> previous{};
  static ResultWord replacement(id self, SEL name);
};

// Acapella2: -[MPUSystemMediaControlsViewController action_openapp]
struct Acapella2OpenApp {
  static inline constinit platform::Previous<ResultWord(id, SEL)> previous{};
  static ResultWord replacement(id self, SEL name);
};

// Auxo: -[AuxoCollectionView activateApplicationWithDisplayIdentifier:fromCell:]
struct AuxoActivateApplication {
  static inline constinit platform::Previous<ResultWord(id, SEL, id, id)> previous{};
  static ResultWord replacement(id self, SEL name, id identifier, id cell);
};

// MiniPlayer: -[MPMiniPlayerActionsDelegate openNowPlayingApp]
struct MiniPlayerOpenApp {
  static inline constinit platform::Previous<ResultWord(id, SEL)> previous{};
  static ResultWord replacement(id self, SEL name);
};

}  // namespace corvalen::springboard
