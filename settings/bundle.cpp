#include "settings/bundle.hpp"

#include "settings/app_chooser.hpp"
#include "settings/settings_page.hpp"

namespace corvalen::settings {

using namespace platform;

NSBundle ownBundle() {
  return NSBundle::bundleWithPath("/Library/PreferenceBundles/CorvalenPro.bundle"_ns);
}

NSString localized(ConstantText text) {
  if (!text) return {};
  const auto english = view<NSString>(objectOf(text));
  const NSString found = ownBundle().localized(english, "CorvalenPro"_ns);
  return found ? found : english;
}

id* specifierVariable(id page) {
  objc_ivar* const variable =
      class_getInstanceVariable(PSListController::cls().cls(), "_specifiers");
  if (!variable) return nullptr;
  return reinterpret_cast<id*>(reinterpret_cast<uintptr_t>(page) +
                               static_cast<uintptr_t>(ivar_getOffset(variable)));
}

namespace {

// Runs when the Settings app loads the bundle: the classes must be there before it asks for the
// principal one. In a process without pages nothing is made.
[[gnu::constructor]] void bundleLoaded() {
  if (!PSListController::cls()) return;
  registerSettingsPage();
  registerAppChooser();
}

}  // namespace

}  // namespace corvalen::settings
