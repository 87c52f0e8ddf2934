#include "settings/app_chooser.hpp"

#include "settings/failure.hpp"
#include "settings/page.hpp"
#include "settings/store.hpp"

namespace corvalen::settings {

using namespace platform;

namespace {

constexpr Literal kClass = "CVPAppChooser";
constexpr NSUInteger kIconPoints = 29;

// What was typed into the search bar of the chooser that is open. Owned.
constinit NSString searchText{};

void searchFor(NSString words) {
  const auto before = Retained<NSString>::adopt(searchText);
  searchText = words.copy().leak();
}

NSString appOf(PSSpecifier row) { return as<NSString>(row.propertyForKey("app"_ns)); }

// The setting that a chooser is for. Borrowed.
NSString setting(id chooser) {
  return as<NSString>(view<PSListController>(chooser).specifier().propertyForKey("key"_ns));
}

// ---- Rows

// A row for an app, or for none if that is empty.
void addRow(NSMutableArray list, Object page, NSString name, NSString app, NSString chosen) {
  const auto row = PSSpecifier::row(name, page, nullptr, nullptr, {}, PreferenceCell::listItem);
  const bool isChosen = app.length() == 0 ? chosen.length() == 0 : app.isEqualToString(chosen);
  row.setPropertyForKey(app, "app"_ns);
  row.setPropertyForKey(NSNumber::numberWithBool(isChosen), "chosen"_ns);
  if (row) list.addObject(row);
}

bool isSearchedFor(NSString name) {
  if (searchText.length() == 0) return true;
  return NSPredicate::withFormat("SELF CONTAINS[cd] %@"_ns, searchText).accepts(name);
}

Retained<NSMutableArray> makeRows(Object page) {
  auto list = NSMutableArray::make();
  const auto settings = preferences::read();
  const NSString chosen = preferences::asText(settings->objectForKey(setting(page.raw)));
  if (const PSSpecifier all = PSSpecifier::group({})) list->addObject(all);
  if (searchText.length() == 0) addRow(list.get(), page, localized(text::none), ""_ns, chosen);
  const NSDictionary names = appList().applications();
  enumerate(appList().identifiersSortedByTitle(), [&](Object object) {
    const auto app = as<NSString>(object);
    const auto name = as<NSString>(names.objectForKey(app));
    if (isSearchedFor(name)) addRow(list.get(), page, name, app, chosen);
  });
  return list;
}

id specifiers(id self, SEL) {
  return keptSpecifiers(self, [self] { return makeRows(view(self)); });
}

// Icons are asked for as their rows are drawn: each may have to come from SpringBoard.
id cellForRow(id self, SEL, id table, id indexPath) {
  const PSSpecifier row = view<PSListController>(self).specifierAtIndexPath(view(indexPath));
  if (!row.propertyForKey("iconImage"_ns) && appOf(row).length() != 0)
    row.setPropertyForKey(appList().iconOfSize(kIconPoints, appOf(row)), "iconImage"_ns);
  const id cell =
      sendToListController<"tableView:cellForRowAtIndexPath:", id>(self, table, indexPath);
  const bool isChosen = preferences::asBoolean(row.propertyForKey("chosen"_ns));
  view<UITableViewCell>(cell).setAccessory(isChosen ? UITableViewCell::Accessory::checkmark
                                                    : UITableViewCell::Accessory::none);
  return cell;
}

void didSelectRow(id self, SEL, id table, id indexPath) {
  const NSString app = appOf(view<PSListController>(self).specifierAtIndexPath(view(indexPath)));
  const bool isNone = app.length() == 0;
  if (app) tell(change(setting(self), isNone ? NSString{} : app));
  view<UITableView>(table).deselectRow(view(indexPath), true);
  view<PSListController>(self).reloadSpecifiers();
}

// ---- The search

void viewDidLoad(id self, SEL) {
  sendToListController<"viewDidLoad">(self);
  const auto bar = UISearchBar::make();
  bar->setDelegate(view(self));
  bar->sizeToFit();
  view<PSListController>(self).table().setTableHeaderView(bar.get());
}

void searchTextChanged(id self, SEL, id, id words) {
  searchFor(view<NSString>(words));
  view<PSListController>(self).reloadSpecifiers();
}

void searchButtonClicked(id, SEL, id bar) { view<UISearchBar>(bar).resignFirstResponder(); }

// The next chooser begins with all apps.
void viewWillDisappear(id self, SEL, BOOL animated) {
  searchFor({});
  sendToListController<"viewWillDisappear:">(self, animated);
}

BOOL canBeShownFromSuspendedState(id, SEL) { return NO; }

id bundle(id, SEL) { return ownBundle().raw; }

constexpr AddedMethod kMethods[] = {
    addedMethod<&specifiers, "specifiers">(),
    addedMethod<&cellForRow, "tableView:cellForRowAtIndexPath:">(),
    addedMethod<&didSelectRow, "tableView:didSelectRowAtIndexPath:">(),
    addedMethod<&viewDidLoad, "viewDidLoad">(),
    addedMethod<&viewWillDisappear, "viewWillDisappear:">(),
    addedMethod<&searchTextChanged, "searchBar:textDidChange:">(),
    addedMethod<&searchButtonClicked, "searchBarSearchButtonClicked:">(),
    addedMethod<&canBeShownFromSuspendedState, "canBeShownFromSuspendedState">(),
    addedMethod<&bundle, "bundle">(),
};

}  // namespace

void registerAppChooser() {
  const Class cls = objc_allocateClassPair(PSListController::cls().cls(), kText<kClass>.text, 0);
  if (!cls) return;
  addMethods<kMethods>(cls);
  objc_registerClassPair(cls);
}

ClassObject appChooserClass() { return classNamed<kClass>(); }

ALApplicationList appList() {
  dlopen(ALApplicationList::kLibrary, kLoadLazily);
  return ALApplicationList::sharedApplicationList(ALApplicationList::cls());
}

}  // namespace corvalen::settings
