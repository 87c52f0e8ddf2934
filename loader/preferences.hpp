// The user's settings as SpringBoard has them: the whole file, kept in memory. Other processes read
// the file where they need a value.
// docs/decisions.md: SpringBoard keeps a copy
#pragma once
#include "loader/settings_file.hpp"

namespace corvalen::preferences {

// The file's contents or the defaults; null before the first load. Owned here, replaced as a whole
// at each reload: do not hold on to it or to what it holds.
extern constinit NSMutableDictionary preferencesDictionary;

// Loads the file, creates it with the defaults if it is missing or empty, and has the now-playing
// titles refreshed. SpringBoard's main thread only.
void loadPreferences();

// Values of SpringBoard's copy. A value of a wrong type reads as a missing one. A text is held on
// its own: whatever runs the run loop may have the settings loaded again, and the old ones go.
bool boolean(NSString key);
platform::Retained<NSString> text(NSString key);
bool isPresent(NSString key);

}  // namespace corvalen::preferences
