#include "springboard/title_display.hpp"

#include "loader/preferences.hpp"
#include "platform/version.hpp"
#include "springboard/launcher.hpp"
#include "springboard/session.hpp"

namespace corvalen::springboard {

using namespace platform;

namespace key = preferences::key;

void refreshTitleViews() {
  if (version() < kIOS7_1 || version() > kLastSupported) return;
  if (!preferences::boolean(key::masterSwitch())) return;
  // The empty name is only a reason to ask: the hook below puts the right one in.
  // docs/decisions.md: The empty name
  enumerate(titleViewRegistry, [](Object element) {
    if (element) as<MPUMediaControlsTitlesView>(element).updateNowPlayingAppDisplayName(""_ns);
  });
}

// Registered as it is before the previous initialiser, which may answer another object: that one's
// dealloc is not ours to expect, this one's is.
// docs/decisions.md: Registered before it is initialised
id TitlesViewInit::replacement(id self, SEL name, NSInteger style) {
  titleViewRegistry.addObject(view(self));
  return previous(self, name, style);
}

void TitlesViewDealloc::replacement(id self, SEL name) {
  titleViewRegistry.removeObject(view(self));
  previous(self, name);
}

void UpdateNowPlayingAppDisplayName::replacement(id self, SEL name, id displayName) {
  const auto player = preferences::text(key::preferredPlayer());
  const bool enabled = preferences::boolean(key::masterSwitch());
  if (!enabled) return previous(self, name, displayName);
  if (player->length() == 0) return previous(self, name, (""_ns).raw);
  const auto shown =
      Retained<NSString>::retain(applicationForIdentifier(player.get()).displayName());
  previous(self, name, shown.get().raw);
}

}  // namespace corvalen::springboard
