#include "loader/installer.hpp"

#include "loader/hook_tables.hpp"
#include "loader/preferences.hpp"
#include "ui/block_alert.hpp"
#include "ui/block_timer.hpp"
#include "welcome/follow_handler.hpp"

namespace corvalen::loader {

using namespace platform;

namespace {

template <const auto& Rows>
[[gnu::always_inline]] inline void observe(CFNotificationCenterRef center) {
  auto* const addObserver = bound(&CFNotificationCenterAddObserver);
  unrolled<std::size(Rows)>([&]<size_t Index>() __attribute__((always_inline)) {
    constexpr ObserverRow kRow = Rows[Index];
    addObserver(center, nullptr, kRow.callback, objectOf(kRow.name), nullptr, kDeliverImmediately);
  });
}

// What installs rows of hooks, each function of it looked up once.
struct Hooking {
  decltype(&objc_getClass) getClass = bound(&objc_getClass);
  decltype(&sel_registerName) registerName = bound(&sel_registerName);
  decltype(&MSHookMessageEx) hookMessage = bound(&MSHookMessageEx);

  [[gnu::always_inline]] void install(Class cls, MethodRow row) const {
    row.install(cls, registerName(row.selectorName), hookMessage);
  }
};

// A class that is missing is passed on as it is: the hooking framework then installs nothing.
// docs/decisions.md: Hooks on what is missing
template <const auto& Groups>
[[gnu::always_inline]] inline void hook(const Hooking& hooking = {}) {
  unrolled<std::size(Groups)>([&]<size_t Group>() __attribute__((always_inline)) {
    constexpr const HookGroup& kGroup = Groups[Group];
    if (!kGroup.versions.isEveryVersion() && !kGroup.versions.contains(version())) return;
    const Class cls = hooking.getClass(kGroup.className);
    unrolled<kGroup.rows.size()>([&]<size_t Row>() __attribute__((always_inline)) {
      hooking.install(cls, kGroup.rows[Row]);
    });
  });
}

// Asks the default file manager, afresh for each file.
struct FileQuestion {
  SEL defaultManager;
  SEL fileExistsAtPath;
  Messenger messenger;

  [[gnu::always_inline]] bool exist(const Hooking& hooking, NSString path) const {
    const auto cls = view(reinterpret_cast<id>(hooking.getClass("NSFileManager")));
    const auto files = messenger.send<NSFileManager>(cls, defaultManager);
    return messenger.send<bool>(files, fileExistsAtPath, path);
  }
};

[[gnu::always_inline]] inline void hookAddOns(const Hooking& hooking) {
  const FileQuestion files{
      hooking.registerName("defaultManager"), hooking.registerName("fileExistsAtPath:"), {}};
  unrolled<std::size(kAddOnHooks)>([&]<size_t Index>() __attribute__((always_inline)) {
    constexpr const AddOnRow& kAddOn = kAddOnHooks[Index];
    if (files.exist(hooking, view<NSString>(objectOf(kAddOn.path))))
      hooking.install(hooking.getClass(kAddOn.className), kAddOn.row);
  });
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
  observe<kSpringBoardObservers>(CFNotificationCenterGetDarwinNotifyCenter());
  observe<kSpringBoardLocalObservers>(CFNotificationCenterGetLocalCenter());
  const Hooking hooking;
  hook<kSpringBoardHooks>(hooking);
  hookAddOns(hooking);
  hookMediaCommand<springboard::RemoteCommand>();
}

template <const auto& Hooks>
[[gnu::noinline]] void installPlayer() {
  ui::registerTimerCategory();
  observe<kPlayerObservers>(CFNotificationCenterGetDarwinNotifyCenter());
  apps::readAutoPlay();
  notify_post(signals::kPlayerStarted);
  hook<Hooks>();
}

[[gnu::noinline]] void installGarmin() { hook<kGarminHooks>(); }

[[gnu::always_inline]] inline void installOther() {
  observe<kOtherObservers>(CFNotificationCenterGetDarwinNotifyCenter());
  hookMediaCommand<apps::PlayCommand>();
}

// Asks the main bundle for its identifier, afresh for each comparison. Every app on the phone
// passes here, so the bundle and the selectors are looked up once for all.
// docs/decisions.md: The identifier is asked for each comparison
class ProcessQuestion {
 public:
  [[gnu::always_inline]] bool is(NSString identifier) const {
    const auto own = messenger_.send<NSString>(bundle_, bundleIdentifier_);
    return messenger_.send<bool>(own, isEqualToString_, identifier);
  }

 private:
  decltype(&sel_registerName) registerName_ = bound(&sel_registerName);
  Messenger messenger_;
  ClassObject bundleClass_ = classNamed<"NSBundle">();
  SEL mainBundle_ = registerName_("mainBundle");
  NSBundle bundle_ = messenger_.send<NSBundle>(bundleClass_, mainBundle_);
  SEL bundleIdentifier_ = registerName_("bundleIdentifier");
  SEL isEqualToString_ = registerName_("isEqualToString:");
};

[[gnu::always_inline]] inline void installSet() {
  const ProcessQuestion process;
  if (process.is("com.apple.springboard"_ns)) [[unlikely]]
    return installSpringBoard();
  if (process.is("com.spotify.client"_ns)) [[unlikely]]
    return installPlayer<kSpotifyHooks>();
  if (process.is("com.apple.podcasts"_ns)) [[unlikely]]
    return installPlayer<kPodcastsHooks>();
  if (process.is("com.garmin.connect.mobile"_ns)) [[unlikely]]
    return installGarmin();
  installOther();
}

}  // namespace

// docs/decisions.md: Nothing outside of the versions
// docs/decisions.md: The alert category is in every process
void install() {
  void* const pool = objc_autoreleasePoolPush();
  if (versionIsSupported()) {
    ui::registerAlertCategory();
    installSet();
  }
  objc_autoreleasePoolPop(pool);
}

}  // namespace corvalen::loader
