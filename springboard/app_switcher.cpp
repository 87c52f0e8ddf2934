#include "springboard/app_switcher.hpp"

#include "loader/preferences.hpp"
#include "springboard/session.hpp"

namespace corvalen::springboard {

using namespace platform;

namespace {

// A card went; `identifier()` tells whose and is asked only if an app stands in for Music.
template <class Identifier>
void cardRemoved(Identifier identifier) {
  resetPendingLaunch();
  const NSString replacement = preferences::text(preferences::key::musicReplacement());
  if (replacement.length() == 0) return;
  if (replacement.isEqualToString(identifier())) system("killall -9 Music");
}

void displayItemRemoved(id item) {
  cardRemoved([item] { return view<SBDisplayItem>(item).displayIdentifier(); });
}

}  // namespace

// Before the card goes, while the index still means it.
void QuitAppAtIndex::replacement(id self, SEL name, NSUInteger index) {
  cardRemoved([self, index] {
    return view<SBAppSliderController>(self).displayIDAtIndex(static_cast<uint32_t>(index));
  });
  previous(self, name, index);
}

void RemoveDisplayItem::replacement(id self, SEL name, id item) {
  previous(self, name, item);
  displayItemRemoved(item);
}

void RemoveItem::replacement(id self, SEL name, id item) {
  previous(self, name, item);
  displayItemRemoved(item);
}

}  // namespace corvalen::springboard
