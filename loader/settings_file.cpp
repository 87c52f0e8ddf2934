#include "loader/settings_file.hpp"

namespace corvalen::preferences {

using platform::NSDictionary;
using platform::NSObject;
using platform::Retained;

NSString path() {
  return NSString::stringWithFormat("/var/mobile/Library/Preferences/%@.plist"_ns, domain());
}

Retained<NSMutableDictionary> read() { return NSMutableDictionary::withContentsOfFile(path()); }

// docs/decisions.md: Settings of a wrong type
bool asBoolean(Object object) {
  if (!platform::as<NSObject>(object).respondsTo(platform::selector<"boolValue">())) return false;
  return platform::send<"boolValue", bool>(object);
}

// Asked by class: data has a length too, but is no text.
NSString asText(Object object) {
  const bool isText = platform::as<NSObject>(object).isKindOfClass(NSString::cls());
  return isText ? platform::as<NSString>(object) : NSString{};
}

bool boolean(NSDictionary dictionary, NSString key) {
  return asBoolean(dictionary.objectForKey(key));
}

}  // namespace corvalen::preferences
