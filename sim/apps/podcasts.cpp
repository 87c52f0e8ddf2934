// Podcasts: its two app delegates, the controller and the player behind it. Leaves out episodes and
// pausing, and that older releases have another way to the player: both ways are there on every
// version.
#include "sim/apps/apps.hpp"
#include "sim/apps/definitions.hpp"
#include "sim/core/device.hpp"
#include "sim/platform/telling.hpp"
#include "sim/springboard/media.hpp"
#include "sim/uikit/application.hpp"

namespace sim {

namespace {

constexpr double kNewerDelegate = 1240.1;  // from this version on the delegate is another class

class MTPlayer final : public Object {
 public:
  using Object::Object;
  void play() {
    const Ref<Object> alive(this);
    if (reluctance.nudged() && !playing) {
      playing = true;
      beginPlaying(process.device, process.identifier);
    }
    if (temperOf(process).replaced) replace();
  }
  // Another object that goes on where this one was.
  void replace() {
    const auto next = process.make<MTPlayer>("MTPlayer");
    next->reluctance = reluctance;
    next->playing = playing;
    process.replaceShared("MTPlayer", next);
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
  MTPlayer* player() { return vanishing_.isGone(process) ? nullptr : sharedPlayer(process); }

 private:
  Vanishing vanishing_;
};

class MTPlayerController final : public Object {
 public:
  using Object::Object;
  MTPlayer* player() { return vanishing_.isGone(process) ? nullptr : sharedPlayer(process); }
  Object* playerViewController() {
    const std::string name = "MTPlayerViewController";
    return process.findClass(name) ? &process.shared<MTPlayerViewController>(name) : nullptr;
  }
  bool isPlaying() {
    const auto& reports = temperOf(process).reports;
    const MTPlayer* player = sharedPlayer(process);
    return reports ? reports->playing : player && player->playing;
  }

 private:
  Vanishing vanishing_;
};

Object* sharedController(Class& cls) {
  return &cls.process.shared<MTPlayerController>("MTPlayerController");
}

ClassDefinition defineDelegate(const std::string& name) {
  auto definition = ClassDefinition::of<Object>(name, "NSObject", Home::app(kPodcasts));
  definition
      .code(detail::methodCode<Object, bool, Object*, Object*>(
          "application:willFinishLaunchingWithOptions:",
          [](Object& self, Object*, Object*) {
            return !self.process.device.state.tellingArguments;
          }))
      .effect();
  return definition;
}

}  // namespace

void startPodcasts(Process& process) {
  if (MTPlayer* player = sharedPlayer(process)) player->reluctance = Reluctance(process);
  const bool newer = process.device.state.version >= kNewerDelegate;
  const std::string name = newer ? "MTAppDelegate_iOS" : "MTAppDelegate";
  if (!process.findClass(name)) return;
  process.sendIfAnswered(
      &process.shared<Object>(name), "application:willFinishLaunchingWithOptions:",
      {Value::object(sharedApplication(process)->address), optionsArgument(process)});
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
