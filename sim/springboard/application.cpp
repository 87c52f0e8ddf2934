// SpringBoard's objects for apps, and their scenes. Leaves out badges, states of an app but whether
// it runs, and all of a scene but whether it is in the background.
#include "sim/core/device.hpp"
#include "sim/springboard/definitions.hpp"
#include "sim/springboard/springboard.hpp"

namespace sim {

// ---- Scenes

std::string FBSMutableSceneSettings::description() const {
  return std::string("<backgrounded ") + (backgrounded ? "YES>" : "NO>");
}

FBScene::FBScene(Process& owner, std::string app)
    : Object(owner),
      app_(std::move(app)),
      settings_(owner.findClass("FBSMutableSceneSettings")
                    ? owner.make<FBSMutableSceneSettings>("FBSMutableSceneSettings")
                    : Ref<FBSMutableSceneSettings>()) {}

void FBScene::apply(FBSMutableSceneSettings* settings, Object*, Object*) {
  if (!settings) throw Fault("scene settings that are nil");
  settings_->backgrounded = settings->backgrounded;
}

ClassDefinition defineFBSMutableSceneSettings() {
  auto definition = ClassDefinition::of<FBSMutableSceneSettings>("FBSMutableSceneSettings",
                                                                 "NSObject", Home::springBoard());
  definition.classOn(Versions::since(kIOS8));
  definition.code(detail::methodCode<FBSMutableSceneSettings, void, bool>(
      "setBackgrounded:",
      [](FBSMutableSceneSettings& self, bool backgrounded) { self.backgrounded = backgrounded; }));
  definition.code(detail::methodCode<FBSMutableSceneSettings, Owned<FBSMutableSceneSettings>>(
      "mutableCopy", [](FBSMutableSceneSettings& self) {
        auto copy = self.process.make<FBSMutableSceneSettings>("FBSMutableSceneSettings");
        copy->backgrounded = self.backgrounded;
        return Owned<FBSMutableSceneSettings>{copy};
      }));
  return definition;
}

ClassDefinition defineFBScene() {
  auto definition = ClassDefinition::of<FBScene>("FBScene", "NSObject", Home::springBoard());
  definition.classOn(Versions::since(kIOS8));
  definition.method("mutableSettings", &FBScene::mutableSettings);
  definition.method("_applyMutableSettings:withTransitionContext:completion:", &FBScene::apply)
      .effect();
  return definition;
}

// ---- Applications

SBApplication::SBApplication(Process& owner, std::string app)
    : Object(owner), app_(app), identifier_(makeString(owner, app)) {
  if (owner.findClass("FBScene")) scene_ = owner.make<FBScene>("FBScene", std::move(app));
}

Ref<NSString> SBApplication::displayName() const {
  const App* app = process.device.state.app(app_);
  return app ? makeString(process, app->name) : Ref<NSString>();
}

bool SBApplication::isRunning() const {
  const App* app = process.device.state.app(app_);
  return app && app->running;
}

namespace {

// One object an app, for SpringBoard's life.
class ApplicationObjects final : public Object {
 public:
  using Object::Object;
  std::map<std::string, Ref<SBApplication>> all;
};

}  // namespace

SBApplication* applicationObject(Process& springBoard, const std::string& identifier) {
  if (!springBoard.findClass("SBApplication")) return nullptr;
  Ref<SBApplication>& slot =
      springBoard.shared<ApplicationObjects>("_SBApplicationObjects").all[identifier];
  if (!slot) slot = springBoard.make<SBApplication>("SBApplication", identifier);
  return slot.get();
}

void dropApplicationObject(Process& springBoard, const std::string& identifier) {
  springBoard.shared<ApplicationObjects>("_SBApplicationObjects").all.erase(identifier);
}

ClassDefinition defineApplicationObjects() {
  return ClassDefinition::of<ApplicationObjects>("_SBApplicationObjects", "NSObject",
                                                 Home::springBoard());
}

ClassDefinition defineSBApplication() {
  auto definition =
      ClassDefinition::of<SBApplication>("SBApplication", "NSObject", Home::springBoard());
  definition.method("bundleIdentifier", &SBApplication::bundleIdentifier);
  definition.method("displayIdentifier", &SBApplication::bundleIdentifier);
  definition.method("displayName", &SBApplication::displayName);
  definition.method("isRunning", &SBApplication::isRunning);
  definition.method("mainScene", &SBApplication::mainScene).on(Versions::since(kIOS8));
  definition
      .code(detail::methodCode<SBApplication, void, Object*>("processDidLaunch:",
                                                             [](SBApplication&, Object*) {}))
      .on(Versions::since(kIOS8))
      .effect();
  definition
      .code(detail::methodCode<SBApplication, void>("resumeForContentAvailable",
                                                    [](SBApplication&) {}))
      .effect();
  return definition;
}

namespace {

class SBApplicationController final : public Object {
 public:
  using Object::Object;
  SBApplication* find(NSString* identifier) {
    const std::string name = textOf(identifier);
    return process.device.state.app(name) ? applicationObject(process, name) : nullptr;
  }
};

Object* sharedController(Class& cls) {
  return &cls.process.shared<SBApplicationController>("SBApplicationController");
}

}  // namespace

ClassDefinition defineSBApplicationController() {
  auto definition = ClassDefinition::of<SBApplicationController>("SBApplicationController",
                                                                 "NSObject", Home::springBoard());
  definition.classMethod("sharedInstance", &sharedController);
  definition.method("applicationWithBundleIdentifier:", &SBApplicationController::find)
      .on(Versions::since(kIOS8));
  // Lost on iOS 8, where AppList makes it up when somebody sends it.
  definition.method("applicationWithDisplayIdentifier:", &SBApplicationController::find)
      .on(Versions::before(kIOS9))
      .resolvedBy("ALApplicationList", kOnlyIOS8);
  return definition;
}

}  // namespace sim
