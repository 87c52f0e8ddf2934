#include "sim/scenario/settings_file.hpp"

#include "sim/foundation/property_list.hpp"
#include "sim/platform/device_actions.hpp"

namespace sim::scenario {

namespace {

// Borrowed; null if the file is none.
plist_t dictionary(const Device& device) {
  plist_t node = propertyListIn(device.files, kSettingsPath);
  return node && plist_get_node_type(node) == PLIST_DICT ? node : nullptr;
}

// The file is put, replaced or deleted; a folder in its place stays, and is said.
void requireNoFolder(const Device& device) {
  if (device.files.isFolder(kSettingsPath))
    throw ActionError("a folder is in the settings file's place");
}

plist_t toNode(const SettingValue& value) {
  if (const bool* truth = std::get_if<bool>(&value)) return plist_new_bool(*truth);
  if (const auto* text = std::get_if<std::string>(&value)) return plist_new_string(text->c_str());
  return plist_new_uint(static_cast<std::uint64_t>(std::get<std::int64_t>(value)));
}

}  // namespace

void setSetting(Device& device, const std::string& key, const SettingValue& value) {
  requireNoFolder(device);
  plist_t before = dictionary(device);
  PlistNode root(before ? plist_copy(before) : nullptr);
  const bool takeOut = std::holds_alternative<Absent>(value);
  if (!root) {
    if (takeOut) return;
    root.reset(plist_new_dict());
  }
  if (takeOut)
    plist_dict_remove_item(root.get(), key.c_str());
  else
    plist_dict_set_item(root.get(), key.c_str(), toNode(value));
  writeSettings(device, toXml(root.get()));
}

void writeSettings(Device& device, const std::string& bytes) {
  requireNoFolder(device);
  device.files.write(kSettingsPath, bytes);
}

void removeSettings(Device& device) {
  requireNoFolder(device);
  device.files.remove(kSettingsPath);
}

std::optional<std::map<std::string, std::string>> readSettings(const Device& device) {
  plist_t root = dictionary(device);
  if (!root) return std::nullopt;
  std::map<std::string, std::string> settings;
  for (const auto& [key, value] : entriesOf(root)) settings[key] = toXml(value);
  return settings;
}

}  // namespace sim::scenario
