#include "loader/installer.hpp"

#include "loader/hook_tables.hpp"
#include "loader/preferences.hpp"
#include "ui/block_alert.hpp"
#include "ui/block_timer.hpp"
#include "welcome/follow_handler.hpp"

namespace corvalen::loader {

using namespace platform;

namespace {

void observe(std::span<const ObserverRow> rows) {
  for (const ObserverRow& row : rows) {
    const CFNotificationCenterRef center = row.isDarwin
                                               ? CFNotificationCenterGetDarwinNotifyCenter()
                                               : CFNotificationCenterGetLocalCenter();
    CFNotificationCenterAddObserver(center, nullptr, row.callback, row.name().raw, nullptr,
                                    kDeliverImmediately);
  }
}

// A class that is missing is passed on as it is: the hooking framework then installs nothing.
void hook(std::span<const HookGroup> groups) {
  for (const HookGroup& group : groups) {
    if (!group.versions.contains(version())) continue;
    const Class cls = objc_getClass(group.className);
    for (const MethodRow& row : group.rows) row.install(cls, sel_registerName(row.selectorName));
  }
}

void hookAddOns() {
  for (const AddOnRow& addOn : kAddOnHooks) {
    if (!NSFileManager::defaultManager().fileExistsAtPath(addOn.path())) continue;
    const Class cls = objc_getClass(addOn.className);
    addOn.row.install(cls, sel_registerName(addOn.row.selectorName));
  }
}

template <class Hook>
void hookMediaCommand() {
  hookFunction<Hook>(reinterpret_cast<void*>(mediaCommandFunction()));
}

void installSpringBoard() {
  preferences::loadPreferences();
  observe(kSpringBoardObservers);
  hook(kSpringBoardHooks);
  hookAddOns();
  hookMediaCommand<springboard::RemoteCommand>();
}

void installPlayer(std::span<const HookGroup> hooks) {
  observe(kPlayerObservers);
  apps::readAutoPlay();
  notify_post(signals::kPlayerStarted);
  hook(hooks);
}

void installOther() {
  observe(kOtherObservers);
  hookMediaCommand<apps::PlayCommand>();
}

bool processIs(NSString bundleIdentifier) {
  return NSBundle::mainBundle().bundleIdentifier().isEqualToString(bundleIdentifier);
}

void installSet() {
  if (processIs("com.apple.springboard"_ns))
    installSpringBoard();
  else if (processIs("com.spotify.client"_ns))
    installPlayer(kSpotifyHooks);
  else if (processIs("com.apple.podcasts"_ns))
    installPlayer(kPodcastsHooks);
  else if (processIs("com.garmin.connect.mobile"_ns))
    hook(kGarminHooks);
  else
    installOther();
}

}  // namespace

void install() {
  void* const pool = objc_autoreleasePoolPush();
  if (versionIsSupported()) {
    ui::registerTimerCategory();
    ui::registerAlertCategory();
    welcome::registerFollowHandler();
    installSet();
  }
  objc_autoreleasePoolPop(pool);
}

}  // namespace corvalen::loader
