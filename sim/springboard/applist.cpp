// AppList's list of the installed apps, in SpringBoard and in processes that ask SpringBoard for
// it. Stands in for libapplist.dylib; leaves out predicates, values of apps, and icons but for
// their being there.
#include <algorithm>

#include "sim/core/device.hpp"
#include "sim/foundation/array.hpp"
#include "sim/foundation/dictionary.hpp"
#include "sim/foundation/string.hpp"
#include "sim/springboard/definitions.hpp"

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

// The same in SpringBoard and in the Settings app, where it comes with its library.
ClassDefinition define(Home home) {
  auto definition =
      ClassDefinition::of<ALApplicationList>("ALApplicationList", "NSObject", std::move(home));
  definition.mainThreadOnly(false);
  definition.classMethod("sharedApplicationList", &sharedList);
  definition.method("applications", &ALApplicationList::applications);
  definition.method("applicationsFilteredUsingPredicate:onlyVisible:titleSortedIdentifiers:",
                    &ALApplicationList::sorted);
  definition.method("iconOfSize:forDisplayIdentifier:", &ALApplicationList::icon);
  return definition;
}

}  // namespace

ClassDefinition defineALApplicationList() { return define(Home::springBoard()); }

ClassDefinition defineSettingsAppList() {
  return define(Home::app(kSettings)).partOf(Framework::AppList);
}

}  // namespace sim
