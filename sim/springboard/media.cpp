#include "sim/springboard/media.hpp"

#include "sim/core/device.hpp"
#include "sim/foundation/dictionary.hpp"
#include "sim/foundation/number.hpp"
#include "sim/springboard/definitions.hpp"
#include "sim/springboard/result_word.hpp"
#include "sim/springboard/springboard.hpp"

namespace sim {

namespace {

class SBMediaController final : public Object {
 public:
  using Object::Object;
  bool hasTrack() const { return track().has_value(); }
  bool isPlaying() const { return track() && track()->playing; }
  void play() {
    if (process.device.state.track) process.device.state.track->playing = true;
  }
  Object* nowPlayingApplication() {
    return track() ? applicationObject(process, track()->app) : nullptr;
  }
  void setNowPlayingInfo(NSDictionary*) {}

 private:
  const std::optional<Track>& track() const { return process.device.state.track; }
};

Object* sharedMediaController(Class& cls) {
  return &cls.process.shared<SBMediaController>("SBMediaController");
}

class AVSystemController final : public Object {
 public:
  using Object::Object;
  Ref<NSNumber> attributeForKey(NSString* key) {
    if (textOf(key) != "AVSystemController_HeadphoneJackIsConnectedAttribute") return {};
    return makeNumber(process, process.device.state.headphones);
  }
};

Object* sharedAudioController(Class& cls) {
  return &cls.process.shared<AVSystemController>("AVSystemController");
}

class TUCallCenter final : public Object {
 public:
  using Object::Object;
  bool inCall() const { return process.device.state.inCall; }
};

Object* sharedCallCenter(Class& cls) { return &cls.process.shared<TUCallCenter>("TUCallCenter"); }

}  // namespace

void tellNowPlaying(Process& springBoard, bool anything) {
  if (!springBoard.findClass("SBMediaController")) return;
  springBoard.device.callback(springBoard, [&] {
    const auto info = anything ? makeDictionary(springBoard) : Ref<NSDictionary>();
    springBoard.sendIfAnswered(&springBoard.shared<SBMediaController>("SBMediaController"),
                               "setNowPlayingInfo:", {Value::object(info ? info->address : 0)});
  });
}

void beginPlaying(Device& device, const std::string& app) {
  device.state.track = Track{app, true};
  if (Process* springBoard = device.springBoard()) tellNowPlaying(*springBoard, true);
}

void setTrackPlaying(Device& device, const std::string& app, bool playing) {
  auto& track = device.state.track;
  if (track && track->app == app) track->playing = playing;
}

ClassDefinition defineSBMediaController() {
  auto definition =
      ClassDefinition::of<SBMediaController>("SBMediaController", "NSObject", Home::springBoard());
  definition.classMethod("sharedInstance", &sharedMediaController);
  definition.method("hasTrack", &SBMediaController::hasTrack);
  definition.method("isPlaying", &SBMediaController::isPlaying);
  definition.method("nowPlayingApplication", &SBMediaController::nowPlayingApplication);
  definition.method("play", &SBMediaController::play).effect();
  definition.method("setNowPlayingInfo:", &SBMediaController::setNowPlayingInfo).effect();
  return definition;
}

ClassDefinition defineMPUSystemMediaControlsViewController() {
  auto definition = ClassDefinition::of<Object>("MPUSystemMediaControlsViewController", "NSObject",
                                                Home::springBoard());
  const auto add = [&](NativeCode code) -> ClassDefinition& {
    return definition.code(std::move(code)).effect();
  };
  add(detail::methodCode<Object, void, Object*, long>("transportControlsView:tapOnControlType:",
                                                      [](Object&, Object*, long) {}));
  add(detail::methodCode<Object, void, Object*>("mediaControlsTitlesViewWasTapped:",
                                                [](Object&, Object*) {}));
  add(leavingWord<>("action_OpenApp")).onlyWithAddOn("Acapella");
  add(leavingWord<>("action_openapp")).onlyWithAddOn("Acapella2");
  return definition;
}

ClassDefinition defineMPUTransportControlsView() {
  return ClassDefinition::of<Object>("MPUTransportControlsView", "UIView", Home::springBoard());
}

namespace {

// An initialiser may answer another object than it was sent to, which then goes.
Ref<MPUMediaControlsTitlesView> initTitlesView(MPUMediaControlsTitlesView& self, long) {
  if (!self.process.device.state.tellingArguments) return &self;
  return self.process.make<MPUMediaControlsTitlesView>("MPUMediaControlsTitlesView");
}

}  // namespace

ClassDefinition defineMPUMediaControlsTitlesView() {
  auto definition = ClassDefinition::of<MPUMediaControlsTitlesView>("MPUMediaControlsTitlesView",
                                                                    "UIView", Home::springBoard());
  definition
      .code(detail::methodCode<MPUMediaControlsTitlesView, Ref<MPUMediaControlsTitlesView>, long>(
          "initWithMediaControlsStyle:", initTitlesView))
      .effect();
  definition
      .method("updateNowPlayingAppDisplayName:",
              &MPUMediaControlsTitlesView::updateNowPlayingAppDisplayName)
      .on(Versions::since(kIOS7_1))
      .effect();
  definition
      .code(detail::methodCode<MPUMediaControlsTitlesView, void>(
          "dealloc", [](MPUMediaControlsTitlesView& self) { self.process.destroy(self); }))
      .effect();
  return definition;
}

ClassDefinition defineAVSystemController() {
  auto definition = ClassDefinition::of<AVSystemController>("AVSystemController", "NSObject",
                                                            Home::springBoard());
  definition.mainThreadOnly(false);
  definition.partOf(Framework::Celestial);
  definition.classMethod("sharedAVSystemController", &sharedAudioController);
  definition.method("attributeForKey:", &AVSystemController::attributeForKey);
  return definition;
}

ClassDefinition defineTUCallCenter() {
  auto definition =
      ClassDefinition::of<TUCallCenter>("TUCallCenter", "NSObject", Home::springBoard());
  definition.partOf(Framework::TelephonyUtilities);
  definition.classMethod("sharedInstance", &sharedCallCenter);
  definition.method("inCall", &TUCallCenter::inCall).on(Versions::before(kIOS9));
  definition.method("anyCallIsHostedOnCurrentDevice", &TUCallCenter::inCall)
      .on(Versions::since(kIOS8));
  return definition;
}

}  // namespace sim
