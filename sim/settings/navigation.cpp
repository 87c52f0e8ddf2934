#include "sim/settings/navigation.hpp"

#include "sim/settings/definitions.hpp"

namespace sim {

SettingsNavigation& navigation(Process& settings) {
  return settings.shared<SettingsNavigation>("_PSNavigation");
}

void pushPage(Process& settings, PSSpecifier& row) {
  if (!row.detail) return;
  const Ref<Object> fresh = settings.allocateInstance(*row.detail);
  const Value made = settings.send(fresh.get(), "init");
  const Ref<PSListController> page(dynamic_cast<PSListController*>(settings.object(made.bits)));
  if (!page) throw Fault(row.detail->name + " is no page");
  settings.send(page.get(), "setRootController:", {Value::nil()});
  settings.send(page.get(), "setParentController:", {Value::nil()});
  settings.send(page.get(), "setSpecifier:", {Value::object(row.address)});
  navigation(settings).pages.push_back(page);
  settings.send(page.get(), "viewDidLoad");
  settings.send(page.get(), "viewWillAppear:", {Value::boolean(true)});
}

void popPage(Process& settings) {
  auto& pages = navigation(settings).pages;
  const Ref<PSListController> going = pages.back();
  settings.send(going.get(), "viewWillDisappear:", {Value::boolean(true)});
  pages.pop_back();
  if (!pages.empty()) settings.send(pages.back().get(), "viewWillAppear:", {Value::boolean(true)});
}

ClassDefinition defineSettingsNavigation() {
  return ClassDefinition::of<SettingsNavigation>("_PSNavigation", "NSObject",
                                                 Home::app("com.apple.Preferences"));
}

}  // namespace sim
