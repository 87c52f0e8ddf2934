// UIAlertView: shown alerts stay until a button is pressed. Leaves out looks, text fields, and
// styles, which are kept and change nothing.
#pragma once
#include "sim/core/process.hpp"
#include "sim/foundation/string.hpp"

namespace sim {

// How the system takes an alert away that nobody answered.
enum class Dismissal : std::uint8_t {
  Cancelled,  // as documented: the delegate is told, or has the cancel button pressed
  Dismissed,  // without a button: the delegate hears of the dismissal alone
  Vanished,   // and of nothing
};

class UIAlertView final : public Object {
 public:
  using Object::Object;

  long addButton(NSString* title);
  NSString* buttonTitle(long index) const;  // borrowed; Fault if there is no such button
  std::size_t buttons() const { return buttons_.size(); }
  long cancelButtonIndex() const { return cancelIndex_; }
  NSString* title() const { return title_.get(); }      // borrowed; may be null, as the message
  NSString* message() const { return message_.get(); }  // borrowed
  long tag() const { return tag_; }
  void setTag(long tag) { tag_ = tag; }
  void setAlertViewStyle(long style) { style_ = style; }
  Object* delegate() const;  // borrowed
  void setDelegate(Object* delegate);
  void show();

  // The user presses a button: the delegate hears of it in the platform's order, and the alert is
  // gone.
  void press(long button);
  void dismissBySystem(Dismissal how);
  // '"TITLE" "MESSAGE" ["BUTTON"] tag 0'
  std::string contents() const;

  void setTexts(NSString* title, NSString* message, NSString* cancelTitle);

 private:
  void tellDelegate(const std::string& selector, std::vector<Value> more);

  Ref<NSString> title_;
  Ref<NSString> message_;
  std::vector<Ref<NSString>> buttons_;
  long cancelIndex_ = -1;
  long tag_ = 0;
  long style_ = 0;
  Address delegate_ = 0;  // not held
};

// The alert shown last of those still up; null if there is none. Borrowed.
UIAlertView* topAlert(Process& process);
// All that are up, in the order in which they were shown. Borrowed.
std::vector<UIAlertView*> shownAlerts(Process& process);

}  // namespace sim
