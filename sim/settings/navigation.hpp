// The pages that are open in the Settings app, one above the other. Stands in for its navigation
// controller; leaves out everything but this product's page and those that it leads to.
#pragma once
#include "sim/settings/list_controller.hpp"

namespace sim {

class SettingsNavigation final : public Object {
 public:
  using Object::Object;
  std::vector<Ref<PSListController>> pages;
};

// The pages that are open in this process.
SettingsNavigation& navigation(Process& settings);

// Opens the page that a row leads to, as tapping it does; nothing if it leads to none.
void pushPage(Process& settings, PSSpecifier& row);
// Goes back by one page.
void popPage(Process& settings);

}  // namespace sim
