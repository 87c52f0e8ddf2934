#include "sim/explore/page_settings.hpp"

#include <fmt/format.h>

#include <algorithm>

#include "settings/page.hpp"
#include "sim/foundation/plist_file.hpp"
#include "sim/settings/preferences_daemon.hpp"

namespace sim::explore {

namespace {

namespace page = corvalen::settings;

std::string textOf(const void* constantString) {
  return static_cast<platform::ConstantText>(constantString)->characters;
}

std::string labelOf(const page::Row& row) { return textOf(row.label); }
std::string keyOf(const page::Row& row) { return textOf(row.key().raw); }

template <class Each>
void eachSetting(Each each) {
  for (const auto& group : page::kPage)
    for (const auto& row : group.rows)
      if (row.key) each(row);
}

std::vector<std::string> labelsOf(page::RowKind kind) {
  std::vector<std::string> all;
  eachSetting([&](const page::Row& row) {
    if (row.kind == kind) all.push_back(labelOf(row));
  });
  return all;
}

std::string shown(PlistNode node) { return toXml(node.get()); }
std::string shown(bool on) { return shown(PlistNode(plist_new_bool(on))); }

bool wasSaved(const scenario::Session& session) {
  return std::ranges::any_of(session.effects(), [](const auto& effect) {
    return effect.process == kSettings && effect.call == "notify_post(\"bfaK8ayWXeXMQum\")";
  });
}

}  // namespace

std::vector<std::string> switchLabels() { return labelsOf(page::RowKind::toggle); }
std::vector<std::string> chooserLabels() { return labelsOf(page::RowKind::chooser); }

std::vector<std::string> pageKeys() {
  std::vector<std::string> all;
  eachSetting([&](const page::Row& row) { all.push_back(keyOf(row)); });
  return all;
}

void PageSettings::noteChange(const std::vector<std::string>& words) {
  eachSetting([&](const page::Row& row) {
    const bool isSwitch = row.kind == page::RowKind::toggle;
    if (words[1] == "reset") made_[keyOf(row)] = isSwitch ? shown(false) : "";
    if (words.size() < 4 || words[2] != labelOf(row)) return;
    if (words[1] == "set") made_[keyOf(row)] = shown(words[3] == "yes");
    if (words[1] == "choose")
      made_[keyOf(row)] =
          words[3] == "none" ? "" : shown(PlistNode(plist_new_string(words[3].c_str())));
  });
}

std::optional<std::string> PageSettings::lost(const scenario::Session& session,
                                              const std::vector<std::string>& words,
                                              const Settings& file) {
  if (words[0] == "prefs") made_.erase(words[1]);
  if (words[0] == "prefs-file" || words[0] == "prefs-remove") made_.clear();
  if (words[0] == "settings" && wasSaved(session)) noteChange(words);
  for (const auto& [key, value] : made_) {
    const auto found =
        file ? file->find(key) : std::map<std::string, std::string>::const_iterator();
    std::string now = file && found != file->end() ? found->second : "";
    if (now.empty() && value == shown(false)) now = value;  // reads the same
    if (now != value) return fmt::format("{} was set to {} and is {}", key, value, now);
  }
  return std::nullopt;
}

}  // namespace sim::explore
