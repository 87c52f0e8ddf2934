#include "sim/apps/apps.hpp"
#include "sim/apps/definitions.hpp"
#include "sim/core/device.hpp"
#include "sim/springboard/media.hpp"
#include "sim/uikit/application.hpp"

namespace sim {

namespace {

constexpr double kNewerDelegate = 1240.1;  // from this version on the delegate is another class

class MTPlayer final : public Object {
 public:
  using Object::Object;
  void play() {
    if (!reluctance.nudged() || playing) return;
    playing = true;
    beginPlaying(process.device, process.identifier);
  }

  Reluctance reluctance;
  bool playing = false;
};

MTPlayer* sharedPlayer(Process& process) {
  return process.findClass("MTPlayer") ? &process.shared<MTPlayer>("MTPlayer") : nullptr;
}

class MTPlayerViewController final : public Object {
 public:
  using Object::Object;
  MTPlayer* player() { return sharedPlayer(process); }
};

class MTPlayerController final : public Object {
 public:
  using Object::Object;
  MTPlayer* player() { return sharedPlayer(process); }
  Object* playerViewController() {
    const std::string name = "MTPlayerViewController";
    return process.findClass(name) ? &process.shared<MTPlayerViewController>(name) : nullptr;
  }
  bool isPlaying() { return player() && player()->playing; }
};

Object* sharedController(Class& cls) {
  return &cls.process.shared<MTPlayerController>("MTPlayerController");
}

ClassDefinition defineDelegate(const std::string& name) {
  auto definition = ClassDefinition::of<Object>(name, "NSObject", Home::app(kPodcasts));
  definition
      .code(detail::methodCode<Object, bool, Object*, Object*>(
          "application:willFinishLaunchingWithOptions:",
          [](Object&, Object*, Object*) { return true; }))
      .effect();
  return definition;
}

}  // namespace

void startPodcasts(Process& process) {
  if (MTPlayer* player = sharedPlayer(process)) player->reluctance = Reluctance(process);
  const bool newer = process.device.state.version >= kNewerDelegate;
  const std::string name = newer ? "MTAppDelegate_iOS" : "MTAppDelegate";
  if (!process.findClass(name)) return;
  process.send(&process.shared<Object>(name), "application:willFinishLaunchingWithOptions:",
               {Value::object(sharedApplication(process)->address), Value::nil()});
}

ClassDefinition defineMTPlayer() {
  auto definition = ClassDefinition::of<MTPlayer>("MTPlayer", "NSObject", Home::app(kPodcasts));
  definition.method("play", &MTPlayer::play).effect();
  return definition;
}

ClassDefinition defineMTPlayerViewController() {
  auto definition = ClassDefinition::of<MTPlayerViewController>("MTPlayerViewController",
                                                                "NSObject", Home::app(kPodcasts));
  definition.method("player", &MTPlayerViewController::player);
  return definition;
}

ClassDefinition defineMTPlayerController() {
  auto definition = ClassDefinition::of<MTPlayerController>("MTPlayerController", "NSObject",
                                                            Home::app(kPodcasts));
  definition.classMethod("sharedInstance", &sharedController);
  definition.method("player", &MTPlayerController::player);
  definition.method("playerViewController", &MTPlayerController::playerViewController);
  definition.method("isPlaying", &MTPlayerController::isPlaying);
  return definition;
}

ClassDefinition defineMTAppDelegate() { return defineDelegate("MTAppDelegate"); }
ClassDefinition defineMTAppDelegateIOS() { return defineDelegate("MTAppDelegate_iOS"); }

}  // namespace sim
