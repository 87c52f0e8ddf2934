// NSBundle: the main one, which has an identifier alone, and the settings bundle, whose Info.plist
// and texts are read from its folder on the host. Leaves out every other bundle, resources by name,
// and the languages behind the user's first one but English.
#include "sim/core/class_definition.hpp"
#include "sim/core/device.hpp"
#include "sim/foundation/definitions.hpp"
#include "sim/foundation/dictionary.hpp"
#include "sim/foundation/plist_file.hpp"
#include "sim/foundation/property_list.hpp"
#include "sim/foundation/string.hpp"

namespace sim {

namespace {

constexpr std::string_view kSettingsBundle = "/Library/PreferenceBundles/CorvalenPro.bundle";

class NSBundle final : public Object {
 public:
  explicit NSBundle(Process& process, std::filesystem::path folder = {})
      : Object(process), folder_(std::move(folder)) {}

  NSString* bundleIdentifier() {
    if (process.isDaemon || process.identifier.empty()) return nullptr;
    if (!identifier_) identifier_ = makeString(process, process.identifier);
    return identifier_.get();
  }

  // The value that is asked for, else the one given; without either the key itself.
  Object* localized(NSString* key, NSString* value, NSString* table) {
    if (!key) return value;
    const Object* found = texts(textOf(table)).find(key->text);
    if (found) return const_cast<Object*>(found);
    return value && !value->text.empty() ? value : key;
  }

  Object* infoValue(NSString* key) {
    if (!info_) info_ = dictionaryIn(folder_ / "Info.plist");
    return key ? info_->find(key->text) : nullptr;
  }

 private:
  Ref<NSDictionary> dictionaryIn(const std::filesystem::path& file) {
    const auto root = readPropertyListFile(file);
    const Ref<Object> object = root ? fromPropertyListNode(process, root.get()) : Ref<Object>();
    const Ref<NSDictionary> dictionary(dynamic_cast<NSDictionary*>(object.get()));
    return dictionary ? dictionary : makeDictionary(process);
  }

  NSDictionary& texts(const std::string& table) {
    Ref<NSDictionary>& slot = tables_[table];
    if (slot) return *slot;
    auto language = folder_ / (process.device.state.language + ".lproj");
    if (!std::filesystem::exists(language)) language = folder_ / "en.lproj";
    slot = dictionaryIn(language / (table + ".strings"));
    return *slot;
  }

  std::filesystem::path folder_;
  Ref<NSString> identifier_;
  Ref<NSDictionary> info_;
  std::map<std::string, Ref<NSDictionary>> tables_;
};

// The bundles of a process that were asked for by their path, each one object for ever.
class BundlesByPath final : public Object {
 public:
  using Object::Object;
  std::map<std::string, Ref<NSBundle>> all;
};

Object* mainBundle(Class& cls) { return &cls.process.shared<NSBundle>("NSBundle"); }

Object* bundleWithPath(Class& cls, NSString* path) {
  const auto& folder = cls.process.device.loader.bundle;
  if (textOf(path) != kSettingsBundle || !std::filesystem::exists(folder)) return nullptr;
  Ref<NSBundle>& slot = cls.process.shared<BundlesByPath>("_NSBundles").all[textOf(path)];
  if (!slot) slot = cls.process.make<NSBundle>("NSBundle", folder);
  return slot.get();
}

}  // namespace

ClassDefinition defineNSBundle() {
  auto definition = ClassDefinition::of<NSBundle>("NSBundle", "NSObject", Home::everywhere());
  definition.classMethod("mainBundle", &mainBundle);
  definition.classMethod("bundleWithPath:", &bundleWithPath);
  definition.method("bundleIdentifier", &NSBundle::bundleIdentifier);
  definition.method("localizedStringForKey:value:table:", &NSBundle::localized);
  definition.method("objectForInfoDictionaryKey:", &NSBundle::infoValue);
  return definition;
}

ClassDefinition defineBundlesByPath() {
  return ClassDefinition::of<BundlesByPath>("_NSBundles", "NSObject", Home::everywhere());
}

}  // namespace sim
