// Changes of the settings file, made so that SpringBoard, which reads the file, and cfprefsd, which
// may have a copy of it, come to know the same.
#pragma once
#include "loader/settings_file.hpp"

namespace corvalen::settings {

enum class Outcome : uint8_t {
  saved,
  unreadable,  // a file is there, but nobody knows what is in it: it is left alone
  unwritable,  // the file is as it was
};

// Sets a key, or takes it out if `value` is nil; every other key keeps its value. What was saved is
// announced. Main thread.
Outcome change(platform::NSString key, platform::Object value);

// The page's nine settings as in a new file; the greeting's markers and foreign keys stay. A file
// that cannot be read is replaced.
Outcome resetAll();

}  // namespace corvalen::settings
