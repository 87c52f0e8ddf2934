#include "settings/failure.hpp"

#include "settings/bundle.hpp"
#include "settings/page.hpp"

namespace corvalen::settings {

using namespace platform;

void tell(Outcome outcome) {
  if (outcome == Outcome::saved) return;
  const ConstantText what = outcome == Outcome::unreadable ? text::notRead : text::notSaved;
  const NSString title = view<NSString>(objectOf(text::title));
  const NSString message = localized(what);
  const NSString ok = localized(text::ok);
  UIAlertView::make(UIAlertView::cls(), title, message, Object{}, ok, NSString{})->show();
}

}  // namespace corvalen::settings
