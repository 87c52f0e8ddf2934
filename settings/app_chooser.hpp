// The list of installed apps, of which one or none is chosen: the class CVPAppChooser, a page that
// a row of the settings page leads to.
#pragma once
#include "platform/applist.hpp"
#include "settings/bundle.hpp"

namespace corvalen::settings {

// Makes the class. Needs PSListController.
void registerAppChooser();
platform::ClassObject appChooserClass();

// AppList's list of apps in this process; nil where AppList is missing.
platform::ALApplicationList appList();

}  // namespace corvalen::settings
