#include "sim/settings/settings_app.hpp"

#include "sim/foundation/dictionary.hpp"
#include "sim/foundation/number.hpp"
#include "sim/foundation/plist_file.hpp"
#include "sim/foundation/property_list.hpp"
#include "sim/platform/device_actions.hpp"
#include "sim/settings/applist.hpp"
#include "sim/settings/definitions.hpp"

namespace sim {

namespace {

std::filesystem::path entryFile(const Device& device) {
  const auto& own = device.state.settingsEntry;
  return own.empty() ? device.loader.bundle.parent_path() / "CorvalenPro.plist" : own;
}

std::string textIn(plist_t dictionary, const char* key) {
  plist_t node = dictionary ? plist_dict_get_item(dictionary, key) : nullptr;
  if (!node || plist_get_node_type(node) != PLIST_STRING) return {};
  std::uint64_t length = 0;
  const char* text = plist_get_string_ptr(node, &length);
  return {text, length};
}

// As PreferenceLoader reads them: bounds are floats, the upper one exclusive.
bool isFor(plist_t entryFile, double version) {
  plist_t filter = plist_dict_get_item(entryFile, "filter");
  plist_t bounds = filter ? plist_dict_get_item(filter, "CoreFoundationVersion") : nullptr;
  if (!bounds) return true;
  const auto number = [](plist_t node) {
    double value = 0;
    plist_get_real_val(node, &value);
    return static_cast<float>(value);
  };
  const auto all = elementsOf(bounds);
  const bool above = all.empty() || version >= number(all[0]);
  return above && (all.size() < 2 || version < number(all[1]));
}

// The class of the page that the entry leads to; null if its bundle does not have it.
Class* pageClass(Process& settings, plist_t entry) {
  if (textIn(entry, "bundle").empty()) return settings.findClass("PSListController");
  const auto& loader = settings.device.loader;
  if (!std::filesystem::exists(loader.bundleExecutable())) return nullptr;
  settings.library().loadBundle();
  plist_t overrides = plist_dict_get_item(entry, "overridePrincipalClass");
  std::uint8_t byDetail = 0;
  if (overrides) plist_get_bool_val(overrides, &byDetail);
  if (byDetail) return settings.findClass(textIn(entry, "detail"));
  const auto info = readPropertyListFile(loader.bundle / "Info.plist");
  return settings.findClass(textIn(info.get(), "NSPrincipalClass"));
}

void openPage(Process& settings) {
  const auto file = readPropertyListFile(entryFile(settings.device));
  plist_t entry = file ? plist_dict_get_item(file.get(), "entry") : nullptr;
  if (!entry || !isFor(file.get(), settings.device.state.version)) return;
  Class* cls = pageClass(settings, entry);
  if (!cls) return;
  const auto row = makeSpecifier(settings, Cell::Link, textIn(entry, "label"));
  row->detail = cls;
  pushPage(settings, *row);
  navigation(settings).pages.back()->draw();
}

Process& running(Device& device) {
  if (!device.springBoard()) throw ActionError("SpringBoard is not running");
  Process* process = device.process(kSettings);
  if (!process) throw ActionError("the Settings app is not open");
  return *process;
}

PSListController& uppermost(Process& settings) {
  const auto& pages = navigation(settings).pages;
  if (pages.empty()) throw ActionError("the settings page is not there");
  return *pages.back();
}

// What a finger does: with nothing in its way, and everything drawn before and after.
void touch(Device& device, const std::function<void(Process&)>& what) {
  Process& settings = running(device);
  uppermost(settings);
  device.callback(settings, [&] {
    while (UIAlertView* alert = topAlert(settings)) alert->press(alert->cancelButtonIndex());
    uppermost(settings).draw();
    what(settings);
    uppermost(settings).draw();
  });
}

using Shown = PSListController::Shown;

Shown find(PSListController& page, const std::string& label) {
  for (const Shown& row : page.draw())
    if (row.cell && textOf(row.specifier->name.get()) == label) return row;
  throw ActionError("the settings page has no row \"" + label + "\"");
}

// Whether the row can be touched at all. ActionError if it is none of that kind.
bool takesFinger(const Shown& row, const std::string& label, bool isRightKind, const char* kind) {
  if (!isRightKind) throw ActionError("\"" + label + "\" is no " + kind);
  return row.specifier->enabled();
}

void tapRow(PSListController& page, const Shown& row) {
  page.table()->selected.emplace_back(row.path->section, row.path->row);
  page.process.send(&page, "tableView:didSelectRowAtIndexPath:",
                    {Value::object(page.table()->address), Value::object(row.path->address)});
}

// ActionError, outside of any callback, if the device is not as the finger needs it.
void requireRow(Device& device, const std::string& label) {
  Process& settings = running(device);
  find(uppermost(settings), label);
}

bool opensList(const Shown& row) {
  return row.specifier->cell == Cell::Link || row.specifier->cell == Cell::LinkList;
}

void tapApp(PSListController& list, const std::string& app) {
  for (const Shown& row : list.draw())
    if (row.cell && row.specifier->property("app") && row.specifier->text("app") == app)
      return tapRow(list, row);
}

}  // namespace

void openSettings(Device& device) {
  if (!device.springBoard()) throw ActionError("SpringBoard is not running");
  if (!device.process(kSettings)) device.startApp(kSettings);
  if (!device.state.locked) device.state.front = kSettings;
  Process* settings = device.process(kSettings);
  if (!settings || !navigation(*settings).pages.empty()) return;
  device.callback(*settings, [&] { openPage(*settings); });
}

void closeSettings(Device& device) {
  device.endProcess(running(device));
  if (device.state.front == kSettings) device.state.front.reset();
}

void moveSwitch(Device& device, const std::string& label, bool on) {
  requireRow(device, label);
  touch(device, [&](Process& settings) {
    const Shown row = find(uppermost(settings), label);
    if (!takesFinger(row, label, row.specifier->cell == Cell::Switch, "switch")) return;
    if ((row.cell->value == "YES") == on) return;
    row.cell->value = on ? "YES" : "NO";
    const Ref<PSSpecifier> specifier(row.specifier);
    specifier->set(makeNumber(settings, on).get());
  });
}

void chooseApp(Device& device, const std::string& label, const std::optional<std::string>& app) {
  requireRow(device, label);
  const App* known = app ? device.state.app(*app) : nullptr;
  if (app && (!known || !known->listed)) throw ActionError(*app + " is not in the list");
  touch(device, [&](Process& settings) {
    PSListController& page = uppermost(settings);
    const Shown row = find(page, label);
    if (!takesFinger(row, label, opensList(row), "list of apps")) return;
    if (row.specifier->property("ALSettingsKey")) {
      AppListPage(*row.specifier).tap(app.value_or(""));
      return;
    }
    tapRow(page, row);
    PSListController& list = uppermost(settings);
    if (&list == &page) return;
    tapApp(list, app.value_or(""));
    popPage(settings);
  });
}

void tapHelp(Device& device) {
  touch(device, [](Process& settings) {
    const Ref<UIBarButtonItem> button = uppermost(settings).navigationItem()->right;
    if (button) button->tap();
  });
}

void resetSettings(Device& device, Answer answer) {
  requireRow(device, "Reset Settings");
  touch(device, [answer](Process& settings) {
    PSListController& page = uppermost(settings);
    tapRow(page, find(page, "Reset Settings"));
    UIAlertView* question = topAlert(settings);
    if (!question) return;
    const long cancel = question->cancelButtonIndex();
    question->press(answer == Answer::Cancel ? cancel : 1 - cancel);
  });
}

ShownPage shownSettings(Device& device) {
  ShownPage shown;
  touch(device, [&](Process& settings) {
    PSListController& page = uppermost(settings);
    if (page.specifier) shown.title = textOf(page.specifier->name.get());
    if (const auto& button = page.navigationItem()->right)
      shown.button = textOf(button->title.get());
    for (const Shown& row : page.draw()) {
      const PSSpecifier& one = *row.specifier;
      const std::string label = textOf(one.name.get());
      if (!row.cell)
        shown.groups.push_back({label, one.text("footerText"), {}});
      else
        shown.groups.back().rows.push_back({label, row.cell->value, one.cell, one.enabled(),
                                            row.cell->checked(), row.cell->hasIcon});
    }
  });
  return shown;
}

void openList(Device& device, const std::string& label) {
  requireRow(device, label);
  touch(device, [&](Process& settings) {
    PSListController& page = uppermost(settings);
    tapRow(page, find(page, label));
  });
}

void tapInList(Device& device, const std::string& app) {
  touch(device, [&](Process& settings) { tapApp(uppermost(settings), app); });
}

void searchInList(Device& device, const std::string& text) {
  touch(device, [&](Process& settings) {
    UISearchBar* bar = uppermost(settings).table()->searchBar();
    if (!bar) throw Fault("a list without a search bar");
    bar->type(text);
    bar->tapSearch();
  });
}

void backFromList(Device& device) {
  touch(device, [](Process& settings) { popPage(settings); });
}

}  // namespace sim
