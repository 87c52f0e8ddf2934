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
  const auto replacement = preferences::text(preferences::key::musicReplacement());
  if (replacement->length() == 0) return;
  // docs/decisions.md: Music is ended by name
  if (replacement->isEqualToString(identifier())) system("killall -9 Music");
}

// The switcher lets go of the item that it removes, and it may have been the last to hold it.
// docs/decisions.md: The item outlives its removal
template <class Hook>
ResultWord removeItem(id self, SEL name, id item) {
  const auto held = Retained<SBDisplayItem>::retain(view<SBDisplayItem>(item));
  const ResultWord result = Hook::previous(self, name, item);
  cardRemoved([&held] { return held->displayIdentifier(); });
  return result;
}

}  // namespace

// Before the card goes, while the index still means it.
// docs/decisions.md: The index has 32 bits
ResultWord QuitAppAtIndex::replacement(id self, SEL name, NSUInteger index) {
  cardRemoved([self, index] {
    return view<SBAppSliderController>(self).displayIDAtIndex(static_cast<uint32_t>(index));
  });
  return previous(self, name, index);
}

ResultWord RemoveDisplayItem::replacement(id self, SEL name, id item) {
  return removeItem<RemoveDisplayItem>(self, name, item);
}

ResultWord RemoveItem::replacement(id self, SEL name, id item) {
  return removeItem<RemoveItem>(self, name, item);
}

}  // namespace corvalen::springboard
