#include "sim/springboard/springboard.hpp"

#include "sim/core/device.hpp"
#include "sim/springboard/definitions.hpp"

namespace sim {

namespace {

// An app that was asked for comes up: its process starts when the running callback is over.
bool launch(SpringBoard& self, NSString* identifier, bool suspended) {
  Device& device = self.process.device;
  const std::string name = textOf(identifier);
  App* app = device.state.app(name);
  if (!app) return false;
  if (!suspended && !device.state.locked) device.state.front = name;
  if (!app->running && !device.process(name)) {
    app->running = true;
    device.enqueue(nullptr, [&device, name] {
      if (device.state.app(name) && !device.process(name)) device.startApp(name);
    });
  }
  return true;
}

Object* frontMost(SpringBoard& self) {
  const auto& front = self.process.device.state.front;
  return front ? applicationObject(self.process, *front) : nullptr;
}

}  // namespace

ClassDefinition defineSpringBoard() {
  auto definition =
      ClassDefinition::of<SpringBoard>("SpringBoard", "UIApplication", Home::springBoard());
  const auto add = [&](NativeCode code) -> ClassDefinition& {
    return definition.code(std::move(code));
  };
  add(detail::methodCode<SpringBoard, Object*>("init", [](SpringBoard& self) {
    return &self;
  })).effect();
  add(detail::methodCode<SpringBoard, void, Object*>("applicationDidFinishLaunching:",
                                                     [](SpringBoard&, Object*) {}))
      .effect();
  add(detail::methodCode<SpringBoard, bool, NSString*, bool>(
          "launchApplicationWithIdentifier:suspended:", launch))
      .effect();
  add(detail::methodCode<SpringBoard, Object*>("_accessibilityFrontMostApplication", frontMost));
  return definition;
}

}  // namespace sim
