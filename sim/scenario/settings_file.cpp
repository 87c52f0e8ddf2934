#include "sim/scenario/settings_file.hpp"

#include <fstream>

#include "sim/foundation/plist_file.hpp"
#include "sim/platform/device_actions.hpp"

namespace sim::scenario {

namespace {

const char* const kPath = "/var/mobile/Library/Preferences/com.qvethmar.corvalenpro.plist";

PlistNode readDictionary(const std::filesystem::path& path) {
  PlistNode node = readPropertyListFile(path);
  if (node && plist_get_node_type(node.get()) != PLIST_DICT) node.reset();
  return node;
}

// Where the file is put, replaced or deleted; a folder stays, and is said.
std::filesystem::path changedPath(const Device& device) {
  auto path = device.hostPath(kPath);
  if (std::filesystem::is_directory(path))
    throw ActionError("a folder is in the settings file's place");
  return path;
}

plist_t toNode(const SettingValue& value) {
  if (const bool* truth = std::get_if<bool>(&value)) return plist_new_bool(*truth);
  if (const auto* text = std::get_if<std::string>(&value)) return plist_new_string(text->c_str());
  return plist_new_uint(static_cast<std::uint64_t>(std::get<std::int64_t>(value)));
}

}  // namespace

void setSetting(Device& device, const std::string& key, const SettingValue& value) {
  PlistNode root = readDictionary(changedPath(device));
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
  std::ofstream file(changedPath(device), std::ios::binary | std::ios::trunc);
  file.write(bytes.data(), static_cast<std::streamsize>(bytes.size()));
}

void removeSettings(Device& device) { std::filesystem::remove(changedPath(device)); }

std::optional<std::map<std::string, std::string>> readSettings(const Device& device) {
  const PlistNode root = readDictionary(device.hostPath(kPath));
  if (!root) return std::nullopt;
  std::map<std::string, std::string> settings;
  plist_dict_iter iterator = nullptr;
  plist_dict_new_iter(root.get(), &iterator);
  for (;;) {
    char* key = nullptr;
    plist_t value = nullptr;
    plist_dict_next_item(root.get(), iterator, &key, &value);
    if (!value) break;
    if (key) settings[key] = toXml(value);
    std::free(key);
  }
  std::free(iterator);
  return settings;
}

}  // namespace sim::scenario
