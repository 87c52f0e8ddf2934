// What somebody does to the settings file, announcing nothing. Whatever changes the file throws
// ActionError if there is a folder in its place. Stands in for an editor on the phone, or a
// settings page of another kind; leaves out cfprefsd, which hears nothing of it.
#pragma once
#include <map>
#include <optional>
#include <string>
#include <variant>

#include "sim/core/device.hpp"

namespace sim::scenario {

// Where it lies on the device.
inline const char* const kSettingsPath =
    "/var/mobile/Library/Preferences/com.qvethmar.corvalenpro.plist";

struct Absent {};
using SettingValue = std::variant<bool, std::int64_t, std::string, Absent>;

// Sets one key, or takes it out. The file is made if it is missing and replaced if it holds no
// dictionary; taking out never makes one.
void setSetting(Device& device, const std::string& key, const SettingValue& value);

// The file becomes exactly these bytes.
void writeSettings(Device& device, const std::string& bytes);

void removeSettings(Device& device);

// What the file holds, each value as a property list of its own; nothing if it holds no dictionary.
std::optional<std::map<std::string, std::string>> readSettings(const Device& device);

}  // namespace sim::scenario
