#include "sim/show/shown_state.hpp"

#include <nlohmann/json.hpp>

#include "sim/foundation/property_list.hpp"
#include "sim/platform/device_actions.hpp"
#include "sim/platform/title_views.hpp"
#include "sim/scenario/settings_file.hpp"
#include "sim/scenario/shown_page.hpp"
#include "sim/uikit/alert_view.hpp"

namespace sim::show {

namespace {

using Json = nlohmann::ordered_json;

Json shown(const NSString* text) { return text ? Json(text->text) : Json(); }

template <class T>
Json orNull(const std::optional<T>& value) {
  return value ? Json(*value) : Json();
}

Json apps(Device& device) {
  Json all = Json::array();
  for (const App& app : device.state.apps)
    all.push_back({{"id", app.identifier},
                   {"name", app.name},
                   {"listed", app.listed},
                   {"running", app.running},
                   {"live", device.process(app.identifier) != nullptr}});
  return all;
}

Json alerts(Device& device) {
  Json all = Json::array();
  for (Process* process : device.processes()) {
    if (process->isDaemon) continue;
    for (const UIAlertView* alert : shownAlerts(*process)) {
      Json buttons = Json::array();
      for (std::size_t i = 0; i < alert->buttons(); ++i)
        buttons.push_back(shown(alert->buttonTitle(static_cast<long>(i))));
      all.push_back({{"process", process->identifier},
                     {"title", shown(alert->title())},
                     {"message", shown(alert->message())},
                     {"buttons", buttons},
                     {"tag", alert->tag()}});
    }
  }
  return all;
}

Json titles(Device& device) {
  Json all = Json::array();
  if (Process* board = device.springBoard())
    for (const auto& [name, view] : titleViews(*board))
      all.push_back({{"name", name}, {"text", shown(view ? view->shownName.get() : nullptr)}});
  return all;
}

Json settingsPage(Device& device) {
  if (!device.process(kSettings)) return {};
  try {
    return scenario::asJson(shownSettings(device));
  } catch (const ActionError&) {
    return {};
  }
}

Json processes(Device& device) {
  Json all = Json::array();
  for (const Process* process : device.processes())
    all.push_back({{"id", process->identifier}, {"daemon", process->isDaemon}});
  return all;
}

Json frameworks(const Device& device) {
  Json all = Json::object();
  for (const FrameworkImage& image : frameworkImages())
    all[image.name] = device.state.frameworks.has(image.framework)         ? "loaded"
                      : device.state.frameworks.isMissing(image.framework) ? "missing"
                                                                           : "late";
  return all;
}

// Truth values, texts and whole numbers as they are, anything else as an XML property list.
Json setting(plist_t node) {
  switch (plist_get_node_type(node)) {
    case PLIST_BOOLEAN: {
      std::uint8_t truth = 0;
      plist_get_bool_val(node, &truth);
      return truth != 0;
    }
    case PLIST_UINT: {
      std::uint64_t number = 0;
      plist_get_uint_val(node, &number);
      return static_cast<std::int64_t>(number);
    }
    case PLIST_STRING: {
      std::uint64_t length = 0;
      const char* text = plist_get_string_ptr(node, &length);
      return std::string(text, length);
    }
    default:
      return toXml(node);
  }
}

Json settingsFile(const Device& device) {
  plist_t root = propertyListIn(device.files, scenario::kSettingsPath);
  if (!root || plist_get_node_type(root) != PLIST_DICT) return {};
  Json all = Json::object();
  for (const auto& [key, value] : entriesOf(root)) all[key] = setting(value);
  return all;
}

}  // namespace

Json stateOf(Device& device) {
  const DeviceState& state = device.state;
  const auto& track = state.track;
  const Json page = settingsPage(device);  // first: what it runs may change the rest
  return {{"time", device.clock.now()},
          {"version", state.version},
          {"springBoard", device.springBoard() != nullptr},
          {"locked", state.locked},
          {"screenOn", state.screenOn},
          {"passcode", state.passcodeShown},
          {"inCall", state.inCall},
          {"headphones", state.headphones},
          {"network", orNull(state.networkFlags)},
          {"front", orNull(state.front)},
          {"apps", apps(device)},
          {"track", track ? Json{{"app", track->app}, {"playing", track->playing}} : Json()},
          {"titles", titles(device)},
          {"alerts", alerts(device)},
          {"settings", page},
          {"processes", processes(device)},
          {"nextTimer", orNull(device.clock.nextDue())},
          {"addOns", state.addOns},
          {"accounts", state.accounts},
          {"missing", state.missingClasses},
          {"frameworks", frameworks(device)},
          {"settingsFile", settingsFile(device)}};
}

}  // namespace sim::show
