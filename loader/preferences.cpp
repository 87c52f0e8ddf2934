#include "loader/preferences.hpp"

#include "springboard/title_display.hpp"

namespace corvalen::preferences {

using platform::NSDictionary;
using platform::NSNumber;
using platform::Retained;

constinit NSMutableDictionary preferencesDictionary{};

namespace {

// What a new file holds: every switch off, no app chosen.
Retained<NSMutableDictionary> defaults() {
  const NSNumber redirection = NSNumber::numberWithBool(false);
  const NSNumber hiddenWhenLocked = NSNumber::numberWithBool(false);
  const NSNumber hiddenWhenUnlocked = NSNumber::numberWithBool(false);
  const NSNumber autoPlay = NSNumber::numberWithBool(false);
  const NSNumber sound = NSNumber::numberWithBool(false);
  const NSNumber noAutoPlayFromIcon = NSNumber::numberWithBool(false);
  const NSNumber headphones = NSNumber::numberWithBool(false);
  return NSMutableDictionary::copyOf(NSDictionary::dictionaryWithObjectsAndKeys(
      redirection, key::masterSwitch(), hiddenWhenLocked, key::startHiddenWhenLocked(),
      hiddenWhenUnlocked, key::startHiddenWhenUnlocked(), autoPlay, key::autoPlay(), sound,
      key::playLaunchSound(), noAutoPlayFromIcon, key::noAutoPlayFromIcon(), headphones,
      key::headphoneTrigger()));
}

}  // namespace

void loadPreferences() {
  if (preferencesDictionary) {
    objc_release(preferencesDictionary.raw);
    preferencesDictionary = {};
  }
  preferencesDictionary = read().leak();
  if (!preferencesDictionary || preferencesDictionary.count() == 0) {
    // An empty dictionary is not released here but left to the pool.
    // docs/decisions.md: The empty dictionary
    objc_autorelease(preferencesDictionary.raw);
    preferencesDictionary = defaults().leak();
    preferencesDictionary.writeToFile(path(), true);
  }
  springboard::refreshTitleViews();
}

bool boolean(NSString key) { return boolean(preferencesDictionary, key); }

Retained<NSString> text(NSString key) {
  return Retained<NSString>::retain(asText(preferencesDictionary.objectForKey(key)));
}

bool isPresent(NSString key) {
  return static_cast<bool>(preferencesDictionary.objectForKeyedSubscript(key));
}

}  // namespace corvalen::preferences
