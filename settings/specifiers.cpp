#include "settings/specifiers.hpp"

#include "settings/app_chooser.hpp"

namespace corvalen::settings {

using namespace platform;

namespace {

// What a page is made of while it is made.
struct Making {
  Object page;
  const PageSelectors& selectors;
  bool withHelp;
  NSMutableDictionary settings;  // as the file is now; nil where there is none
  NSDictionary apps;             // names by identifier; nil where AppList does not answer
  NSMutableArray list;
};

NSString lines(NSString above, NSString below) {
  return NSString::stringWithFormat("%@\n%@"_ns, above, below);
}

// What is below the last row.
NSString closingLines() {
  const auto number = as<NSString>(ownBundle().infoValue("CFBundleShortVersionString"_ns));
  const NSString version = NSString::stringWithFormat(localized(text::version), number);
  const NSString noRespring = localized(text::noRespring);
  return lines(lines(noRespring, localized(text::appStore)), version);
}

// A chooser without a list is worth a line whether or not help is on.
NSString footerOf(const Making& making, const Group& group) {
  if (!group.help) return closingLines();
  const bool choosesApps = group.rows.back().kind == RowKind::chooser;
  if (choosesApps && !making.apps) return localized(text::noAppList);
  return making.withHelp ? localized(group.help) : NSString{};
}

bool hasEffect(const Making& making, const Row& row) {
  if (row.kind == RowKind::chooser) return static_cast<bool>(making.apps);
  return !row.needs || preferences::boolean(making.settings, row.needs());
}

PSSpecifier specifierOf(const Making& making, const Row& row) {
  const auto& [page, selectors, withHelp, settings, apps, list] = making;
  const NSString label = localized(row.label);
  switch (row.kind) {
    case RowKind::toggle:
      return PSSpecifier::row(label, page, selectors.set, selectors.get, {},
                              PreferenceCell::toggle);
    case RowKind::chooser:
      return PSSpecifier::row(label, page, nullptr, selectors.get, appChooserClass(),
                              PreferenceCell::linkList);
    case RowKind::reset:
      break;
  }
  const auto button = PSSpecifier::row(label, page, nullptr, nullptr, {}, PreferenceCell::button);
  button.setButtonAction(selectors.reset);
  return button;
}

// The name of the app that is chosen, or its identifier if it is not installed.
Object chosenApp(const Making& making, NSString setting) {
  const NSString app = preferences::asText(making.settings.objectForKey(setting));
  if (app.length() == 0) return localized(text::none);
  const Object name = making.apps.objectForKey(app);
  return name ? name : app;
}

void addRow(const Making& making, const Row& row) {
  const PSSpecifier specifier = specifierOf(making, row);
  specifier.setPropertyForKey(NSNumber::numberWithBool(hasEffect(making, row)), "enabled"_ns);
  if (specifier) making.list.addObject(specifier);
  if (!row.key) return;
  specifier.setPropertyForKey(row.key(), "key"_ns);
  if (row.kind == RowKind::chooser)
    setShownValue(specifier, chosenApp(making, row.key()));
  else
    setShownValue(specifier,
                  NSNumber::numberWithBool(preferences::boolean(making.settings, row.key())));
}

}  // namespace

Retained<NSMutableArray> makeSpecifiers(Object page, const PageSelectors& selectors,
                                        bool withHelp) {
  auto list = NSMutableArray::make();
  const auto settings = preferences::read();
  const Making making{page,      selectors, withHelp, settings.get(), appList().applications(),
                      list.get()};
  for (const Group& group : kPage) {
    const PSSpecifier heading = PSSpecifier::group(localized(group.title));
    heading.setPropertyForKey(footerOf(making, group), "footerText"_ns);
    if (heading) making.list.addObject(heading);
    for (const Row& row : group.rows) addRow(making, row);
  }
  return list;
}

bool isNeededByOthers(NSString setting) {
  for (const Group& group : kPage)
    for (const Row& row : group.rows)
      if (row.needs && row.needs().isEqualToString(setting)) return true;
  return false;
}

Object shownValue(PSSpecifier row) { return row.propertyForKey("shown"_ns); }

void setShownValue(PSSpecifier row, Object value) { row.setPropertyForKey(value, "shown"_ns); }

NSString settingOf(PSSpecifier row) { return as<NSString>(row.propertyForKey("key"_ns)); }

}  // namespace corvalen::settings
