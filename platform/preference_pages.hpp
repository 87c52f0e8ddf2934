// Views over Preferences.framework, of which pages in the Settings app are made. Only that app has
// it; nothing here is linked. Stands in for headers that the vendor does not publish; leaves out
// the kinds of rows that the settings page has not.
#pragma once
#include "platform/foundation.hpp"
#include "platform/uikit.hpp"

namespace platform {

// What a row is drawn as (PSCellType).
enum class PreferenceCell : NSInteger { linkList = 2, listItem = 3, toggle = 6, button = 13 };

// One row or group of a page. Its target is not retained.
struct PSSpecifier : NSObject {
  // A group; the title may be nil. Autoreleased.
  static PSSpecifier group(NSString title) {
    return send<"groupSpecifierWithName:", PSSpecifier>(classNamed<"PSSpecifier">(), title);
  }
  // A row that asks `get` and tells `set` of `target`; either may be null. `detail` is the class of
  // the page that it leads to. Autoreleased.
  static PSSpecifier row(NSString name, Object target, SEL set, SEL get, ClassObject detail,
                         PreferenceCell cell) {
    return send<"preferenceSpecifierNamed:target:set:get:detail:cell:edit:", PSSpecifier>(
        classNamed<"PSSpecifier">(), name, target, set, get, detail, static_cast<NSInteger>(cell),
        ClassObject{});
  }

  NSString name() const { return send<"name", NSString>(*this); }  // borrowed
  Object propertyForKey(NSString key) const {                      // borrowed
    return send<"propertyForKey:", Object>(*this, key);
  }
  void setPropertyForKey(Object value, NSString key) const {  // nil is ignored
    send<"setProperty:forKey:">(*this, value, key);
  }
  void setButtonAction(SEL action) const { send<"setButtonAction:">(*this, action); }
};

// A page: a table whose rows are specifiers.
struct PSListController : NSObject {
  static ClassObject cls() { return classNamed<"PSListController">(); }

  PSSpecifier specifier() const {  // of the row that led here; borrowed
    return send<"specifier", PSSpecifier>(*this);
  }
  // Has `specifiers` asked for anew, and everything drawn.
  void reloadSpecifiers() const { send<"reloadSpecifiers">(*this); }
  // Has all rows drawn anew.
  void reload() const { send<"reload">(*this); }
  UITableView table() const { return send<"table", UITableView>(*this); }
  UINavigationItem navigationItem() const {
    return send<"navigationItem", UINavigationItem>(*this);
  }
  PSSpecifier specifierAtIndexPath(Object indexPath) const {  // borrowed
    const auto index = send<"indexForIndexPath:", NSInteger>(*this, indexPath);
    return send<"specifierAtIndex:", PSSpecifier>(*this, index);
  }
};

}  // namespace platform
