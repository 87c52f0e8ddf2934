// The bundle itself: its place, its texts in the user's language, and the pages' common needs.
// docs/decisions.md: The page has code
#pragma once
#include "platform/added_method.hpp"
#include "platform/preference_pages.hpp"

namespace corvalen::settings {

// The bundle's own NSBundle, by its path: classes made at run time belong to no bundle that could
// be asked. Autoreleased.
platform::NSBundle ownBundle();

// The text in the user's language, else in English. Autoreleased; nil for none.
platform::NSString localized(platform::ConstantText text);

// Where a page has the variable _specifiers, of its superclass; null where there is none.
id* specifierVariable(id page);

// A page's list of specifiers, made by `make` where it has none: in the variable _specifiers, which
// owns what stands there and which Preferences.framework empties when the page is loaded anew.
// Borrowed; nil if nothing could be made.
template <class Make>
id keptSpecifiers(id page, Make make) {
  id* const kept = specifierVariable(page);
  if (!kept) return objc_autorelease(make().leak().raw);
  if (!*kept) *kept = make().leak().raw;
  return *kept;
}

// What the implementation above ours does.
template <platform::Literal Name, class R = void, class... A>
R sendToListController(id page, A... arguments) {
  using Prototype = R (*)(id, SEL, A...);
  const SEL name = platform::selector<Name>();
  const IMP inherited =
      platform::as<platform::NSObject>(platform::PSListController::cls()).instanceMethodFor(name);
  if (!inherited) return R();
  return reinterpret_cast<Prototype>(inherited)(page, name, arguments...);
}

}  // namespace corvalen::settings
