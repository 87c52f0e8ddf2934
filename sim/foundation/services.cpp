// NSURL and NSFileManager.
#include "sim/foundation/services.hpp"

#include "sim/core/class_definition.hpp"
#include "sim/core/device.hpp"
#include "sim/foundation/definitions.hpp"
#include "sim/foundation/string.hpp"

namespace sim {

namespace {

constexpr std::string_view kAddOnFolder = "/Library/MobileSubstrate/DynamicLibraries/";
constexpr std::string_view kLibrarySuffix = ".dylib";

Ref<NSURL> urlWithString(Class& cls, NSString* text) {
  if (!text) throw Fault("+[NSURL URLWithString:] with nil");
  // What an address cannot hold unescaped.
  if (text->text.find_first_of(" \"<>\\^`{|}\n") != std::string::npos) return {};
  return cls.process.make<NSURL>("NSURL", text->text);
}

class NSFileManager final : public Object {
 public:
  using Object::Object;
  bool fileExistsAtPath(NSString* path) {
    const std::string text = textOf(path);
    if (text.starts_with(kAddOnFolder) && text.ends_with(kLibrarySuffix)) {
      const auto name = text.substr(kAddOnFolder.size(),
                                    text.size() - kAddOnFolder.size() - kLibrarySuffix.size());
      if (process.device.state.addOns.contains(name)) return true;
    }
    std::error_code ignored;
    return std::filesystem::exists(process.device.hostPath(text), ignored);
  }
};

Object* defaultManager(Class& cls) { return &cls.process.shared<NSFileManager>("NSFileManager"); }

}  // namespace

ClassDefinition defineNSURL() {
  auto definition = ClassDefinition::of<NSURL>("NSURL", "NSObject", Home::everywhere());
  definition.classMethod("URLWithString:", &urlWithString);
  return definition;
}

ClassDefinition defineNSFileManager() {
  auto definition =
      ClassDefinition::of<NSFileManager>("NSFileManager", "NSObject", Home::everywhere());
  definition.classMethod("defaultManager", &defaultManager);
  definition.method("fileExistsAtPath:", &NSFileManager::fileExistsAtPath);
  return definition;
}

}  // namespace sim
