// SpringBoard's application object, its applications and their scenes. Stands in for what starts
// and shows apps; leaves out that a launch may be refused or take time.
#pragma once
#include "sim/foundation/string.hpp"
#include "sim/uikit/application.hpp"

namespace sim {

class SpringBoard final : public UIApplication {
 public:
  using UIApplication::UIApplication;
};

class FBSMutableSceneSettings final : public Object {
 public:
  using Object::Object;
  std::string description() const override;
  bool backgrounded = false;
};

class FBScene final : public Object {
 public:
  FBScene(Process& process, std::string app);
  std::string owner() const override { return app_; }
  FBSMutableSceneSettings* mutableSettings() const { return settings_.get(); }
  void apply(FBSMutableSceneSettings* settings, Object* context, Object* completion);

 private:
  std::string app_;
  Ref<FBSMutableSceneSettings> settings_;
};

class SBApplication final : public Object {
 public:
  SBApplication(Process& process, std::string app);
  std::string owner() const override { return app_; }
  NSString* bundleIdentifier() const { return identifier_.get(); }
  Ref<NSString> displayName() const;
  bool isRunning() const;
  FBScene* mainScene() const { return scene_.get(); }

 private:
  std::string app_;
  Ref<NSString> identifier_;
  Ref<FBScene> scene_;
};

// SpringBoard's object for an app, whether or not it is installed; the same at each call. Null
// where the class is missing. Borrowed.
SBApplication* applicationObject(Process& springBoard, const std::string& identifier);
// The app was installed anew: SpringBoard lets go of its object and makes another when asked.
void dropApplicationObject(Process& springBoard, const std::string& identifier);

}  // namespace sim
