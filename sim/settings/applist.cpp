#include "sim/settings/applist.hpp"

#include "sim/foundation/dictionary.hpp"
#include "sim/foundation/property_list.hpp"
#include "sim/settings/preferences_daemon.hpp"

namespace sim {

AppListPage::AppListPage(PSSpecifier& row) : row_(row) {
  const auto file = readPropertyList(row.process, row.text("ALSettingsPath"));
  auto copy = makeDictionary(row.process);
  if (file)
    for (const auto& entry : file->entries()) copy->set(entry.key, entry.value.get());
  copy_ = copy;
}

void AppListPage::tap(const std::string& app) {
  Process& process = row_.process;
  auto& copy = dynamic_cast<NSDictionary&>(*copy_);
  const std::string key = row_.text("ALSettingsKey");
  const auto* before = dynamic_cast<NSString*>(copy.find(key));
  const bool chosen = before && before->text == app;
  copy.set(key, chosen ? nullptr : makeString(process, app).get());
  const std::string path = row_.text("ALSettingsPath");
  const auto slash = path.rfind('/') + 1;
  const std::string domain = path.substr(slash, path.rfind('.') - slash);
  auto& daemon = process.device.service<PreferencesDaemon>();
  if (process.device.state.version >= 1000)
    daemon.set(process, domain, key,
               chosen ? nullptr : toPropertyListNode(*makeString(process, app)));
  writePropertyList(copy, path);
  daemon.synchronize(process, domain);
  process.device.postDarwin(row_.text("ALChangeNotification"));
}

}  // namespace sim
