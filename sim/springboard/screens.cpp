// Lock screen, backlight, Control Center, home screen and app switcher.
#include "sim/springboard/screens.hpp"

#include "sim/core/device.hpp"
#include "sim/springboard/definitions.hpp"
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

// The icon's app, by SpringBoard's own message, which may be hooked.
void launchIcon(Face& self, SBApplicationIcon* icon) {
  if (!icon) return;
  self.process.send(sharedApplication(self.process), "launchApplicationWithIdentifier:suspended:",
                    {Value::object(icon->applicationBundleID()->address), Value::boolean(false)});
}

Ref<NSString> displayIdAtIndex(Face& self, unsigned long index) {
  const auto& apps = self.state().apps;
  if (index >= apps.size()) throw Fault("-[SBAppSliderController _displayIDAtIndex:] beyond cards");
  return makeString(self.process, apps[index].identifier);
}

}  // namespace

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
  definition.code(quiet<void, int>("finishUIUnlockFromSource:")).effect();
  definition.code(quiet<void, bool, bool, Object*>("setPasscodeLockVisible:animated:completion:"))
      .effect();
  definition
      .code(quiet<void, bool, bool, int, Object*>(
          "setPasscodeLockVisible:animated:withUnlockSource:andOptions:"))
      .effect();
  definition.code(quiet<void>("_handleDisplayTurnedOff")).effect();
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
  definition.code(detail::methodCode<Face, bool>("screenIsOn",
                                                 [](Face& self) { return self.state().screenOn; }));
  definition.code(detail::methodCode<Face, bool>(
      "screenIsOff", [](Face& self) { return !self.state().screenOn; }));
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
  auto definition = defineFace("SBAppSliderController");
  definition.code(quiet<void, unsigned long>("_quitAppAtIndex:")).effect();
  definition.code(detail::methodCode<Face, Ref<NSString>, unsigned long>("_displayIDAtIndex:",
                                                                         displayIdAtIndex));
  return definition;
}

ClassDefinition defineSBAppSwitcherModel() {
  auto definition = defineFace("SBAppSwitcherModel");
  definition.code(quiet<void, Object*>("removeDisplayItem:")).effect();
  definition.code(quiet<void, Object*>("remove:")).effect();
  return definition;
}

ClassDefinition defineSBDisplayItem() {
  auto definition =
      ClassDefinition::of<SBDisplayItem>("SBDisplayItem", "NSObject", Home::springBoard());
  definition.method("displayIdentifier", &SBDisplayItem::displayIdentifier);
  return definition;
}

ClassDefinition defineSBAppSuggestionManager() {
  auto definition = defineFace("SBAppSuggestionManager");
  definition.code(detail::methodCode<Face, Object*>("init", [](Face& self) { return &self; }))
      .effect();
  return definition;
}

}  // namespace sim
