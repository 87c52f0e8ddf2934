// NSURL and NSFileManager.
#include "sim/foundation/services.hpp"

#include <cctype>
#include <utility>

#include "sim/core/class_definition.hpp"
#include "sim/core/device.hpp"
#include "sim/foundation/definitions.hpp"
#include "sim/foundation/string.hpp"

namespace sim {

namespace {

constexpr std::string_view kAddOnFolder = "/Library/MobileSubstrate/DynamicLibraries/";
constexpr std::string_view kLibrarySuffix = ".dylib";

// By RFC 2396, with the brackets of RFC 2732: what it excludes stands escaped, and one fragment.
bool isAddress(const std::string& text) {
  constexpr std::string_view kPlain = "-_.!~*'();/?:@&=+$,[]";
  bool fragment = false;
  for (std::size_t i = 0; i < text.size(); ++i) {
    const auto hex = [&](std::size_t at) {
      return at < text.size() && std::isxdigit(static_cast<unsigned char>(text[at]));
    };
    if (text[i] == '%') {
      if (!hex(i + 1) || !hex(i + 2)) return false;
    } else if (text[i] == '#') {
      if (std::exchange(fragment, true)) return false;
    } else if (!std::isalnum(static_cast<unsigned char>(text[i])) &&
               kPlain.find(text[i]) == std::string_view::npos) {
      return false;
    }
  }
  return true;
}

Ref<NSURL> urlWithString(Class& cls, NSString* text) {
  if (!text) throw Fault("+[NSURL URLWithString:] with nil");
  if (!isAddress(text->text)) return {};
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
    return process.device.files.exists(text);
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
