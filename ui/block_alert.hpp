// Alerts that report to callbacks instead of a delegate: the category qohjpXd2LfI70yaz on
// UIAlertView. An alert becomes its own delegate when it is given its first callback; a delegate
// that it had before goes on receiving every delegate message, after the callback.
#pragma once
#include "platform/uikit.hpp"

namespace corvalen::ui {

// Shows an alert of the default style and returns it, autoreleased. `otherTitles` is an array of
// texts or nil; `response`, if given, is a block (alert, index of the button pressed) and is
// copied. With a cancel title that is button 0 and the others follow in order. Main thread.
platform::UIAlertView showAlert(platform::NSString title, platform::NSString message,
                                platform::NSString cancelTitle, platform::NSArray otherTitles,
                                platform::Object response);

// Adds the category's methods to UIAlertView, where that class is.
void registerAlertCategory();

}  // namespace corvalen::ui
