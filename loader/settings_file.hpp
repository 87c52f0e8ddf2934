// The settings file: its keys, where it lies, how its values read. The settings page writes it, and
// so does SpringBoard for the greeting's markers; every process may read it.
#pragma once
#include "platform/foundation.hpp"

namespace corvalen::preferences {

using namespace platform::literals;
using platform::NSMutableDictionary;
using platform::NSString;
using platform::Object;

// ---- The file's keys
// docs/decisions.md: Names without meaning
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

// ---- The file

// The domain that it is the file of.
inline NSString domain() { return "com.qvethmar.corvalenpro"_ns; }
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
