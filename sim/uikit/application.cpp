#include "sim/uikit/application.hpp"

#include "sim/core/device.hpp"
#include "sim/foundation/services.hpp"
#include "sim/uikit/definitions.hpp"

namespace sim {

Object* sharedApplication(Process& process) {
  if (!process.isSpringBoard()) return &process.shared<UIApplication>("UIApplication");
  // The home screen's application is of a class of its own.
  Class* own = process.findClass("SpringBoard");
  return own ? &process.sharedInstance(*own) : nullptr;
}

namespace {

Object* shared(Class& cls) { return sharedApplication(cls.process); }

bool canOpenUrl(UIApplication& self, NSURL* url) {
  if (!url) return false;
  const auto colon = url->text.find(':');
  return self.process.device.state.openableSchemes.contains(url->text.substr(0, colon));
}

bool openUrl(UIApplication&, NSURL*) { return true; }

// The address itself is shown, not the object that holds it.
std::string describeOpen(const Invocation& invocation) {
  const auto* url = dynamic_cast<const NSURL*>(invocation.object(0));
  return "-[" + invocation.self->isa->name + " openURL:" + (url ? quoted(url->text) : "nil") + "]";
}

}  // namespace

ClassDefinition defineUIApplication() {
  auto definition =
      ClassDefinition::of<UIApplication>("UIApplication", "NSObject", Home::everywhere());
  definition.mainThreadOnly();
  definition.partOf(Framework::UIKit);
  definition.classMethod("sharedApplication", &shared);
  definition.code(detail::methodCode<UIApplication, bool, NSURL*>("canOpenURL:", canOpenUrl));
  definition.code(detail::methodCode<UIApplication, bool, NSURL*>("openURL:", openUrl))
      .effect(describeOpen);
  return definition;
}

ClassDefinition defineUIView() {
  return ClassDefinition::of<Object>("UIView", "NSObject", Home::everywhere())
      .mainThreadOnly()
      .partOf(Framework::UIKit);
}

}  // namespace sim
