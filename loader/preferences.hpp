// The user's settings: one property-list file, written by the settings pane and, for the greeting's
// markers, by this library. SpringBoard keeps the whole file in memory; other processes read it
// where they need a value.
#pragma once
#include "platform/foundation.hpp"

namespace corvalen::preferences {

using namespace platform::literals;
using platform::NSMutableDictionary;
using platform::NSString;
using platform::Object;

// ---- The file's keys
namespace key {
// Booleans; missing reads NO.
inline NSString masterSwitch() { return "iea9AQXrEmhSZ4u"_ns; }
inline NSString startHiddenWhenLocked() { return "4sySMd4CfPOr0F"_ns; }
inline NSString startHiddenWhenUnlocked() { return "KwI68FtaZGgSizb"_ns; }
inline NSString playLaunchSound() { return "ljyr9pMzliGkTNvfm"_ns; }
inline NSString autoPlay() { return "LyyY0YZw4enaXR6S"_ns; }
inline NSString noAutoPlayFromIcon() { return "AiPVzGZ3tdh2fBpXy"_ns; }
inline NSString headphoneTrigger() { return "I9gqmWG8wXu6"_ns; }
// Bundle identifiers; missing reads empty.
inline NSString preferredPlayer() { return "2I8UQMOAwU5nnNZt"_ns; }
inline NSString musicReplacement() { return "RjNkaiHs98230Xx"_ns; }
// Markers: only their presence counts.
inline NSString greeted() { return "feo63OPBmERAd2000UpdRdCAND"_ns; }
inline NSString welcomeAnswered() { return "hasShownWAL"_ns; }
}  // namespace key

// ---- SpringBoard's copy

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

// ---- The file

// Where it is, formatted afresh. Autoreleased.
NSString path();
// Reads the file: nothing if it is missing, unreadable or no dictionary.
platform::Retained<NSMutableDictionary> read();
// Values of a dictionary that was read.
bool boolean(platform::NSDictionary dictionary, NSString key);

// `object` as a text, or nothing if it is none. Borrowed.
NSString asText(Object object);
// -boolValue of an object that answers it, else NO.
bool asBoolean(Object object);

}  // namespace corvalen::preferences
