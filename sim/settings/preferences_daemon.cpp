#include "sim/settings/preferences_daemon.hpp"

#include <algorithm>

#include "sim/core/versions.hpp"
#include "sim/foundation/property_list.hpp"

namespace sim {

namespace {

constexpr Microseconds kKeepsChanges = 5'000'000;

std::string fileOf(const std::string& domain) {
  return "/var/mobile/Library/Preferences/" + domain + ".plist";
}

// Whether all that `file` holds stands in `values` too.
bool holds(plist_t values, plist_t file) {
  return std::ranges::all_of(entriesOf(file), [&](const auto& entry) {
    plist_t kept = plist_dict_get_item(values, entry.first.c_str());
    return kept && toXml(kept) == toXml(entry.second);
  });
}

void put(plist_t values, const std::string& key, PlistNode value) {
  if (value)
    plist_dict_set_item(values, key.c_str(), value.release());
  else
    plist_dict_remove_item(values, key.c_str());
}

}  // namespace

bool PreferencesDaemon::exists() const { return device_.state.version >= kIOS8; }

PlistNode PreferencesDaemon::readFile(const std::string& domain) const {
  plist_t values = propertyListIn(device_.files, fileOf(domain));
  const bool isDictionary = values && plist_get_node_type(values) == PLIST_DICT;
  return PlistNode(isDictionary ? plist_copy(values) : plist_new_dict());
}

bool PreferencesDaemon::writeFile(const std::string& domain, plist_t values) const {
  return writePropertyListFile(device_, fileOf(domain), values);
}

PreferencesDaemon::Domain& PreferencesDaemon::cached(const std::string& domain) {
  const auto [entry, fresh] = domains_.try_emplace(domain);
  if (fresh) entry->second.values = readFile(domain);
  return entry->second;
}

void PreferencesDaemon::set(const Process& by, const std::string& domain, const std::string& key,
                            PlistNode value) {
  if (!exists()) {
    pending_[{by.number, domain}].emplace_back(key, std::move(value));
    return;
  }
  Domain& changed = cached(domain);
  put(changed.values.get(), key, std::move(value));
  changed.changed = true;
  if (std::exchange(flushIsDue_, true)) return;
  device_.clock.schedule(kKeepsChanges, false, [this] { flush(); });
}

PlistNode PreferencesDaemon::get(const Process&, const std::string& domain,
                                 const std::string& key) {
  const PlistNode file = exists() ? nullptr : readFile(domain);
  plist_t values = file ? file.get() : cached(domain).values.get();
  plist_t found = plist_dict_get_item(values, key.c_str());
  return PlistNode(found ? plist_copy(found) : nullptr);
}

void PreferencesDaemon::synchronize(const Process& by, const std::string& domain) {
  const auto found = pending_.find({by.number, domain});
  if (found == pending_.end()) return;
  const PlistNode values = readFile(domain);
  for (auto& [key, value] : found->second) put(values.get(), key, std::move(value));
  pending_.erase(found);
  writeFile(domain, values.get());
}

void PreferencesDaemon::flush() {
  flushIsDue_ = false;
  if (!exists()) domains_.clear();  // a system that has become one without it
  for (auto& [name, domain] : domains_) {
    if (!domain.changed) continue;
    const PlistNode before = readFile(name);
    domain.changed = !writeFile(name, domain.values.get());
    if (!domain.changed && !holds(domain.values.get(), before.get())) ++overwritten_;
  }
}

void PreferencesDaemon::restart() {
  flush();
  domains_.clear();
}

void PreferencesDaemon::processEnded(const Process& process) {
  std::erase_if(pending_, [&](const auto& entry) { return entry.first.first == process.number; });
  if (process.identifier == kSettings) flush();
}

}  // namespace sim
