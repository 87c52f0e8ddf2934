// Now-playing title views that scenarios make, show texts in and free.
#include "sim/platform/title_views.hpp"

#include "sim/foundation/string.hpp"
#include "sim/platform/device_actions.hpp"
#include "sim/springboard/media.hpp"

namespace sim {

std::map<std::string, Ref<MPUMediaControlsTitlesView>>& titleViews(Process& springBoard) {
  return springBoard.shared<TitleViews>("_SBTitleViews").all;
}

void newTitleView(Device& device, const std::string& name) {
  Process& process = springBoard(device);
  auto& views = titleViews(process);
  if (views.contains(name)) throw ActionError("a title view " + name + " lives already");
  Class* cls = process.findClass("MPUMediaControlsTitlesView");
  if (!cls || !cls->find("initWithMediaControlsStyle:")) {
    views[name] = {};  // known by name all the same
    return;
  }
  device.callback(process, [&] {
    const Ref<Object> fresh = process.allocateInstance(*cls);
    const long style = device.state.tellingArguments ? 3 : 0;
    const Value made = process.send(
        fresh.get(), "initWithMediaControlsStyle:", {Value::integer(Kind::Long, style)});
    views[name] = Ref<MPUMediaControlsTitlesView>(
        dynamic_cast<MPUMediaControlsTitlesView*>(process.object(made.bits)));
  });
}

void freeTitleView(Device& device, const std::string& name) {
  Process& process = springBoard(device);
  auto& views = titleViews(process);
  const auto found = views.find(name);
  if (found == views.end()) throw ActionError("no title view " + name + " lives");
  device.callback(process, [&] {
    const auto last = std::move(found->second);
    views.erase(found);
  });
}

void showInTitleView(Device& device, const std::string& name, const std::string& text) {
  Process& process = springBoard(device);
  auto& views = titleViews(process);
  const auto found = views.find(name);
  if (found == views.end()) throw ActionError("no title view " + name + " lives");
  device.callback(process, [&] {
    const auto shown = makeString(process, text);
    process.sendIfAnswered(found->second.get(),
                           "updateNowPlayingAppDisplayName:", {Value::object(shown->address)});
  });
}

ClassDefinition defineTitleViews() {
  return ClassDefinition::of<TitleViews>("_SBTitleViews", "NSObject", Home::springBoard());
}

}  // namespace sim
