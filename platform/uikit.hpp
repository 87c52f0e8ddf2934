// Views over UIKit. Nothing links UIKit: daemons get the library too, and must not get UIKit by it.
// Stands in for its headers; leaves out everything but alerts, opening addresses, and what the
// settings page is drawn with.
#pragma once
#include "platform/foundation.hpp"

namespace platform {

struct UIApplication : Object {
  static UIApplication sharedApplication() {
    return send<"sharedApplication", UIApplication>(classNamed<"UIApplication">());
  }
  bool canOpenURL(NSURL url) const { return send<"canOpenURL:", bool>(*this, url); }
  bool openURL(NSURL url) const { return send<"openURL:", bool>(*this, url); }
};

struct UIAlertView : Object {
  static ClassObject cls() { return classNamed<"UIAlertView">(); }

  // An alert of the given class with at most one other button; add more with addButton. Owned by
  // the caller. The delegate is not retained.
  static Retained<UIAlertView> make(ClassObject cls, NSString title, NSString message,
                                    Object delegate, NSString cancelTitle, NSString otherTitle) {
    const Object fresh = send<"alloc", Object>(cls);
    return Retained<UIAlertView>::adopt(
        sendVariadic<"initWithTitle:message:delegate:cancelButtonTitle:otherButtonTitles:",
                     UIAlertView>(fresh, title, message, delegate, cancelTitle, otherTitle,
                                  Object{}));
  }

  void setAlertViewStyle(NSInteger style) const { send<"setAlertViewStyle:">(*this, style); }
  NSInteger addButton(NSString title) const {  // its index
    return send<"addButtonWithTitle:", NSInteger>(*this, title);
  }
  NSString buttonTitleAtIndex(NSInteger index) const {
    return send<"buttonTitleAtIndex:", NSString>(*this, index);
  }
  NSInteger cancelButtonIndex() const { return send<"cancelButtonIndex", NSInteger>(*this); }
  NSInteger tag() const { return send<"tag", NSInteger>(*this); }
  void setTag(NSInteger tag) const { send<"setTag:">(*this, tag); }
  Object delegate() const { return send<"delegate", Object>(*this); }  // borrowed
  void setDelegate(Object delegate) const { send<"setDelegate:">(*this, delegate); }
  void show() const { send<"show">(*this); }
};
inline constexpr NSInteger kDefaultAlertStyle = 0;

struct UIBarButtonItem : Object {
  // Sends `action` to `target`, which is not retained.
  static Retained<UIBarButtonItem> make(NSString title, Object target, SEL action) {
    constexpr NSInteger kPlain = 0;
    const Object fresh = send<"alloc", Object>(classNamed<"UIBarButtonItem">());
    return Retained<UIBarButtonItem>::adopt(
        send<"initWithTitle:style:target:action:", UIBarButtonItem>(fresh, title, kPlain, target,
                                                                    action));
  }
};

struct UINavigationItem : Object {
  void setRightBarButtonItem(UIBarButtonItem item) const {  // retained
    send<"setRightBarButtonItem:">(*this, item);
  }
};

struct UISearchBar : Object {
  static Retained<UISearchBar> make() {
    return Retained<UISearchBar>::adopt(send<"new", UISearchBar>(classNamed<"UISearchBar">()));
  }
  void setDelegate(Object delegate) const { send<"setDelegate:">(*this, delegate); }  // borrowed
  void sizeToFit() const { send<"sizeToFit">(*this); }
  void resignFirstResponder() const { send<"resignFirstResponder">(*this); }
};

struct UITableView : Object {
  void setTableHeaderView(Object view) const { send<"setTableHeaderView:">(*this, view); }
  void deselectRow(Object indexPath, bool animated) const {
    send<"deselectRowAtIndexPath:animated:">(*this, indexPath, animated);
  }
};

struct UITableViewCell : Object {
  enum class Accessory : NSInteger { none = 0, checkmark = 3 };
  void setAccessory(Accessory accessory) const {
    send<"setAccessoryType:">(*this, static_cast<NSInteger>(accessory));
  }
};

}  // namespace platform
