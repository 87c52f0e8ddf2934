// The page in the Settings app: the class CVPSettingsController.
#pragma once

namespace corvalen::settings {

// Makes the class. Needs PSListController.
void registerSettingsPage();

}  // namespace corvalen::settings
