#include "settings/failure.hpp"

#include "settings/bundle.hpp"
#include "settings/page.hpp"

namespace corvalen::settings {

using namespace platform;

void tell(Outcome outcome) {
  if (outcome == Outcome::saved) return;
  const ConstantText what = outcome == Outcome::unreadable ? text::notRead : text::notSaved;
  UIAlertView::make(UIAlertView::cls(), view<NSString>(objectOf(text::title)), localized(what),
                    Object{}, localized(text::ok), NSString{})
      ->show();
}

}  // namespace corvalen::settings
