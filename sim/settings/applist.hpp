// AppList's own page in the Settings app, on which one app is chosen: where a page without code
// leads to. Leaves out its looks and sections, and choosing several apps.
#pragma once
#include "sim/settings/specifier.hpp"

namespace sim {

// AppList's page, as of version 1.5.12, for the row that led to it.
class AppListPage {
 public:
  // Reads the settings file, as it is now, into the copy that the page works on.
  explicit AppListPage(PSSpecifier& row);
  // The user taps an app; tapping the one that is chosen takes the choice away. Writes the whole
  // copy, tells CFPreferences the one key (from iOS 8 on), and posts the row's notification.
  void tap(const std::string& app);

 private:
  PSSpecifier& row_;
  Ref<Object> copy_;
};

}  // namespace sim
