// The bundle itself: its place, its texts in the user's language, and the pages' common needs.
#pragma once
#include "platform/added_method.hpp"
#include "platform/preference_pages.hpp"

namespace corvalen::settings {

// The bundle's own NSBundle, by its path: classes made at run time belong to no bundle that could
// be asked. Autoreleased.
platform::NSBundle ownBundle();

// The text in the user's language. Autoreleased; nil for none.
platform::NSString localized(platform::ConstantText text);

// The place of a page's list of specifiers. It owns what stands there, and Preferences.framework
// empties it when the page is loaded anew. Null for null.
id* specifierList(id page);

// What the implementation above ours does.
template <platform::Literal Name, class R = void, class... A>
R sendToListController(id page, A... arguments) {
  using Prototype = R (*)(id, SEL, A...);
  const SEL name = platform::selector<Name>();
  const IMP inherited =
      platform::as<platform::NSObject>(platform::PSListController::cls()).instanceMethodFor(name);
  return reinterpret_cast<Prototype>(inherited)(page, name, arguments...);
}

}  // namespace corvalen::settings
