#include "sim/settings/applist.hpp"

#include <algorithm>

#include "sim/foundation/array.hpp"
#include "sim/foundation/dictionary.hpp"
#include "sim/foundation/property_list.hpp"
#include "sim/settings/definitions.hpp"
#include "sim/settings/preferences_daemon.hpp"

namespace sim {

namespace {

// Answers nothing while SpringBoard does not.
class ALApplicationList final : public Object {
 public:
  using Object::Object;

  Ref<NSDictionary> applications() {
    if (!process.device.springBoard()) return {};
    auto names = makeDictionary(process);
    for (const App& app : process.device.state.apps)
      if (app.listed) names->set(app.identifier, makeString(process, app.name).get());
    return names;
  }

  // No predicate is ever given here.
  Ref<NSDictionary> sorted(Object*, bool, Pointer identifiers) {
    const auto names = applications();
    if (!names) return {};
    std::vector<std::pair<std::string, std::string>> order;  // name in small letters, identifier
    for (const App& app : process.device.state.apps) {
      if (!app.listed) continue;
      std::string small = app.name;
      std::ranges::transform(small, small.begin(), [](unsigned char c) { return std::tolower(c); });
      order.emplace_back(small, app.identifier);
    }
    std::ranges::sort(order);
    std::vector<Ref<Object>> list;
    list.reserve(order.size());
    for (const auto& [name, app] : order) list.emplace_back(makeString(process, app));
    const auto array = process.autorelease(makeArray(process, list));
    if (identifiers.address) process.library().writePointer(identifiers.address, array->address);
    return names;
  }

  // One image an app.
  Object* icon(unsigned long points, NSString* app) {
    if (points != 29 && points != 59) throw Fault("an icon of a size that there is not");
    if (!process.device.springBoard() || !process.device.state.app(textOf(app))) return nullptr;
    Ref<Object>& slot = icons_[textOf(app)];
    if (!slot) slot = process.make<Object>("UIImage");
    return slot.get();
  }

 private:
  std::map<std::string, Ref<Object>> icons_;
};

Object* sharedList(Class& cls) {
  return &cls.process.shared<ALApplicationList>("ALApplicationList");
}

}  // namespace

ClassDefinition defineSettingsAppList() {
  auto definition = ClassDefinition::of<ALApplicationList>("ALApplicationList", "NSObject",
                                                           Home::app("com.apple.Preferences"));
  definition.mainThreadOnly(false).partOf(Framework::AppList);
  definition.classMethod("sharedApplicationList", &sharedList);
  definition.method("applications", &ALApplicationList::applications);
  definition.method("applicationsFilteredUsingPredicate:onlyVisible:titleSortedIdentifiers:",
                    &ALApplicationList::sorted);
  definition.method("iconOfSize:forDisplayIdentifier:", &ALApplicationList::icon);
  return definition;
}

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
