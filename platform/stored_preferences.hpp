// CFPreferences: the values of a domain, as the system's own store has them. On iOS 7 that is the
// domain's file; from iOS 8 on, cfprefsd's copy, which gets to the file when the daemon likes.
// Leaves out reading, and other users and hosts.
#pragma once
#include "platform/foundation.hpp"

namespace platform {

// Sets a value of the current user's on any host; nil removes it. Stands on
// CFPreferencesSetAppValue.
inline void setStoredPreference(NSString key, Object value, NSString domain) {
  CFPreferencesSetAppValue(key.raw, value.raw, domain.raw);
}

// Has what was set go to the store. Its answer proves nothing, so there is none. Stands on
// CFPreferencesAppSynchronize.
inline void synchronizeStoredPreferences(NSString domain) {
  CFPreferencesAppSynchronize(domain.raw);
}

}  // namespace platform
