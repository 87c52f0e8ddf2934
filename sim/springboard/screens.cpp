// Lock screen, backlight, Control Center, home screen and app switcher.
#include "sim/springboard/screens.hpp"

#include "sim/core/device.hpp"
#include "sim/springboard/definitions.hpp"
#include "sim/springboard/result_word.hpp"
#include "sim/uikit/application.hpp"

namespace sim {

namespace {

// Most of these classes have one instance and no state of their own: they are faces of the device.
class Face : public Object {
 public:
  using Object::Object;
  DeviceState& state() const { return process.device.state; }
};

ClassDefinition defineFace(const std::string& name) {
  return ClassDefinition::of<Face>(name, "NSObject", Home::springBoard());
}

Object* sharedInstance(Class& cls) { return &cls.process.shared<Face>(cls.name); }

// A method that the platform implements without an effect of its own on the device.
template <class R, class... A>
NativeCode quiet(const std::string& selector) {
  return detail::methodCode<Object, R, A...>(selector, [](Object&, A...) -> R {
    if constexpr (!std::is_void_v<R>) return R{};
  });
}

Object* lockScreenViewController(Face& self) {
  const std::string name = "SBLockScreenViewController";
  return self.process.findClass(name) ? &self.process.shared<Face>(name) : nullptr;
}

// What is shown, held by this alone.
class Shown final : public Object {
 public:
  using Object::Object;
  std::vector<Ref<Object>> all;
  void drop(const Object* going) {
    std::erase_if(all, [&](const auto& object) { return object.get() == going; });
  }
};
Shown& shown(Process& process) { return process.shared<Shown>("_SBShown"); }

// The icon's app, by SpringBoard's own message, which may be hooked. The icon may go with the page
// that it is on.
void launchIcon(Face& self, SBApplicationIcon* icon) {
  if (!icon) return;
  const Ref<NSString> app(icon->applicationBundleID());
  shown(self.process).drop(icon);
  self.process.sendIfAnswered(sharedApplication(self.process),
                              "launchApplicationWithIdentifier:suspended:",
                              {Value::object(app->address), Value::boolean(false)});
}

void removeItem(Face& self, Object* item) { shown(self.process).drop(item); }

Ref<NSString> displayIdAtIndex(Face& self, unsigned long index) {
  const auto& apps = self.state().apps;
  if (index >= apps.size()) throw Fault("-[SBAppSliderController _displayIDAtIndex:] beyond cards");
  return makeString(self.process, apps[index].identifier);
}

}  // namespace

SBApplicationIcon* iconOf(Process& springBoard, const std::string& app) {
  const auto icon = springBoard.make<SBApplicationIcon>("SBApplicationIcon", app);
  shown(springBoard).all.emplace_back(icon);
  return icon.get();
}

SBDisplayItem* switcherItem(Process& springBoard, const std::string& app) {
  const auto item = springBoard.make<SBDisplayItem>("SBDisplayItem", app);
  shown(springBoard).all.emplace_back(item);
  return item.get();
}

ClassDefinition defineShown() {
  return ClassDefinition::of<Shown>("_SBShown", "NSObject", Home::springBoard());
}

ClassDefinition defineSBLockScreenManager() {
  auto definition = defineFace("SBLockScreenManager");
  definition.classMethod("sharedInstance", &sharedInstance);
  definition.code(
      detail::methodCode<Face, bool>("isUILocked", [](Face& self) { return self.state().locked; }));
  definition.code(
      detail::methodCode<Face, Object*>("lockScreenViewController", lockScreenViewController));
  return definition;
}

ClassDefinition defineSBLockScreenViewController() {
  auto definition = defineFace("SBLockScreenViewController");
  definition.code(leavingWord<int>("finishUIUnlockFromSource:")).effect();
  definition
      .code(leavingWord<Face, bool, bool, Object*>(
          "setPasscodeLockVisible:animated:completion:",
          [](Face& self, bool visible, bool, Object*) { self.state().passcodeShown = visible; }))
      .effect();
  definition
      .code(detail::methodCode<Face, void, bool, bool, int, Object*>(
          "setPasscodeLockVisible:animated:withUnlockSource:andOptions:",
          [](Face& self, bool visible, bool, int, Object*) {
            self.state().passcodeShown = visible;
          }))
      .effect();
  definition.code(leavingWord<>("_handleDisplayTurnedOff")).effect();
  return definition;
}

ClassDefinition defineSBLockScreenScrollView() {
  auto definition =
      ClassDefinition::of<Face>("SBLockScreenScrollView", "UIView", Home::springBoard());
  definition
      .code(detail::methodCode<Face, bool, Object*>("touchesShouldCancelInContentView:",
                                                    [](Face&, Object*) { return true; }))
      .effect();
  return definition;
}

ClassDefinition defineSBBacklightController() {
  auto definition = defineFace("SBBacklightController");
  definition.classMethod("sharedInstance", &sharedInstance);
  definition
      .code(detail::methodCode<Face, bool>("screenIsOn",
                                           [](Face& self) { return self.state().screenOn; }))
      .on(Versions::since(kIOS9));
  definition
      .code(detail::methodCode<Face, bool>("screenIsOff",
                                           [](Face& self) { return !self.state().screenOn; }))
      .on(Versions::before(kIOS9));
  definition
      .code(detail::methodCode<Face, void, int>(
          "turnOnScreenFullyWithBacklightSource:",
          [](Face& self, int) { self.state().screenOn = true; }))
      .effect();
  definition.code(quiet<void, double, int>("_resetLockScreenIdleTimerWithDuration:mode:")).effect();
  return definition;
}

ClassDefinition defineSBControlCenterController() {
  auto definition = defineFace("SBControlCenterController");
  definition.classMethod("sharedInstance", &sharedInstance);
  definition.code(quiet<void, bool>("dismissAnimated:")).effect();
  return definition;
}

ClassDefinition defineSBIconController() {
  auto definition = defineFace("SBIconController");
  definition.code(detail::methodCode<Face, void, SBApplicationIcon*>("_launchIcon:", launchIcon))
      .effect();
  return definition;
}

ClassDefinition defineSBApplicationIcon() {
  auto definition =
      ClassDefinition::of<SBApplicationIcon>("SBApplicationIcon", "NSObject", Home::springBoard());
  definition.method("applicationBundleID", &SBApplicationIcon::applicationBundleID);
  return definition;
}

ClassDefinition defineSBAppSliderController() {
  auto definition = defineFace("SBAppSliderController").classOn(Versions::before(kIOS8));
  definition.code(leavingWord<unsigned long>("_quitAppAtIndex:")).effect();
  definition.code(detail::methodCode<Face, Ref<NSString>, unsigned long>("_displayIDAtIndex:",
                                                                         displayIdAtIndex));
  return definition;
}

ClassDefinition defineSBAppSwitcherModel() {
  auto definition = defineFace("SBAppSwitcherModel");
  definition.code(leavingWord<Face, Object*>("removeDisplayItem:", removeItem))
      .on(kOnlyIOS8)
      .effect();
  definition.code(leavingWord<Face, Object*>("remove:", removeItem)).effect();
  return definition;
}

ClassDefinition defineSBDisplayItem() {
  auto definition =
      ClassDefinition::of<SBDisplayItem>("SBDisplayItem", "NSObject", Home::springBoard());
  definition.method("displayIdentifier", &SBDisplayItem::displayIdentifier);
  return definition;
}

ClassDefinition defineSBAppSuggestionManager() {
  auto definition = defineFace("SBAppSuggestionManager").classOn(Versions::since(kIOS8));
  definition.code(detail::methodCode<Face, Object*>("init", [](Face& self) { return &self; }))
      .effect();
  return definition;
}

}  // namespace sim
