#include "loader/installer.hpp"

#include "loader/hook_tables.hpp"
#include "loader/preferences.hpp"
#include "ui/block_alert.hpp"
#include "ui/block_timer.hpp"
#include "welcome/follow_handler.hpp"

namespace corvalen::loader {

using namespace platform;

namespace {

template <size_t Count>
[[gnu::always_inline]] inline void observe(CFNotificationCenterRef center,
                                           const ObserverRow (&rows)[Count]) {
  for (const ObserverRow& row : rows)
    CFNotificationCenterAddObserver(center, nullptr, row.callback, objectOf(row.name), nullptr,
                                    kDeliverImmediately);
}

// A class that is missing is passed on as it is: the hooking framework then installs nothing.
[[gnu::noinline]] void hook(std::span<const HookGroup> groups) {
  for (const HookGroup& group : groups) {
    if (!group.versions.contains(version())) continue;
    const Class cls = objc_getClass(group.className);
    for (const MethodRow& row : group.rows) row.install(cls, sel_registerName(row.selectorName));
  }
}

void hookAddOns() {
  for (const AddOnRow& addOn : kAddOnHooks) {
    if (!NSFileManager::defaultManager().fileExistsAtPath(view<NSString>(objectOf(addOn.path))))
      continue;
    const Class cls = objc_getClass(addOn.className);
    addOn.row.install(cls, sel_registerName(addOn.row.selectorName));
  }
}

template <class Hook>
void hookMediaCommand() {
  if (auto* const function = mediaCommandFunction())
    hookFunction<Hook>(reinterpret_cast<void*>(function));
}

[[gnu::noinline]] void installSpringBoard() {
  ui::registerTimerCategory();
  welcome::registerFollowHandler();
  preferences::loadPreferences();
  observe(CFNotificationCenterGetDarwinNotifyCenter(), kSpringBoardObservers);
  observe(CFNotificationCenterGetLocalCenter(), kSpringBoardLocalObservers);
  hook(kSpringBoardHooks);
  hookAddOns();
  hookMediaCommand<springboard::RemoteCommand>();
}

[[gnu::noinline]] void installPlayer(std::span<const HookGroup> hooks) {
  ui::registerTimerCategory();
  observe(CFNotificationCenterGetDarwinNotifyCenter(), kPlayerObservers);
  apps::readAutoPlay();
  notify_post(signals::kPlayerStarted);
  hook(hooks);
}

[[gnu::always_inline]] inline void installOther() {
  observe(CFNotificationCenterGetDarwinNotifyCenter(), kOtherObservers);
  hookMediaCommand<apps::PlayCommand>();
}

// Asks for the process's bundle identifier, afresh for each comparison. Every app on the phone
// passes here, so the class and the selectors are looked up once for all.
class ProcessQuestion {
 public:
  [[gnu::always_inline]] bool is(NSString identifier) const {
    const auto bundle = messenger_.send<NSBundle>(bundleClass_, mainBundle_);
    const auto own = messenger_.send<NSString>(bundle, bundleIdentifier_);
    return messenger_.send<bool>(own, isEqualToString_, identifier);
  }

 private:
  ClassObject bundleClass_ = classNamed<"NSBundle">();
  SEL mainBundle_ = sel_registerName("mainBundle");
  SEL bundleIdentifier_ = sel_registerName("bundleIdentifier");
  SEL isEqualToString_ = sel_registerName("isEqualToString:");
  Messenger messenger_;
};

[[gnu::always_inline]] inline void installSet() {
  const ProcessQuestion process;
  if (process.is("com.apple.springboard"_ns)) [[unlikely]]
    return installSpringBoard();
  if (process.is("com.spotify.client"_ns)) [[unlikely]]
    return installPlayer(kSpotifyHooks);
  if (process.is("com.apple.podcasts"_ns)) [[unlikely]]
    return installPlayer(kPodcastsHooks);
  if (process.is("com.garmin.connect.mobile"_ns)) [[unlikely]]
    return hook(kGarminHooks);
  installOther();
}

}  // namespace

void install() {
  void* const pool = objc_autoreleasePoolPush();
  if (versionIsSupported()) {
    ui::registerAlertCategory();
    installSet();
  }
  objc_autoreleasePoolPop(pool);
}

}  // namespace corvalen::loader
