#include "settings/store.hpp"

#include "loader/signals.hpp"
#include "platform/stored_preferences.hpp"
#include "settings/page.hpp"

namespace corvalen::settings {

using namespace platform;

namespace {

// Calls `each(row)` for every row that sets something.
template <class Each>
void eachSetting(Each each) {
  for (const Group& group : kPage)
    for (const Row& row : group.rows)
      if (row.key) each(row);
}

// From iOS 8 on, cfprefsd writes the domain's file whenever it likes, from a copy of its own, once
// anybody has changed the domain through it. So it is told the whole file: what it writes then is
// what stands there.
// docs/decisions.md: The whole file is told to cfprefsd
void tellDaemon(NSMutableDictionary settings) {
  const NSArray keys = settings.allKeys();
  if (!keys) return;
  enumerate(keys, [&](Object object) {
    const auto name = as<NSString>(object);
    if (const Object value = settings.objectForKey(name))
      setStoredPreference(name, value, preferences::domain());
  });
  eachSetting([&](const Row& row) {
    if (!keys.containsObject(row.key()))
      setStoredPreference(row.key(), Object{}, preferences::domain());
  });
  synchronizeStoredPreferences(preferences::domain());
}

Outcome save(NSMutableDictionary settings) {
  if (!settings.writeToFile(preferences::path(), true)) return Outcome::unwritable;
  tellDaemon(settings);
  notify_post(signals::kSettingsChanged);
  return Outcome::saved;
}

}  // namespace

Outcome change(NSString key, Object value) {
  if (!key) return Outcome::unwritable;
  auto settings = preferences::read();
  if (!settings) {
    // docs/decisions.md: A file that cannot be read is left alone
    const auto files = NSFileManager::defaultManager();
    if (!files || files.fileExistsAtPath(preferences::path())) return Outcome::unreadable;
    settings = NSMutableDictionary::make();
  }
  settings->setValueForKey(value, key);
  return save(settings.get());
}

Outcome resetAll() {
  auto settings = preferences::read();
  if (!settings) settings = NSMutableDictionary::make();
  eachSetting([&](const Row& row) {
    const bool isSwitch = row.kind == RowKind::toggle;
    settings->setValueForKey(isSwitch ? NSNumber::numberWithBool(false) : NSNumber{}, row.key());
  });
  return save(settings.get());
}

}  // namespace corvalen::settings
