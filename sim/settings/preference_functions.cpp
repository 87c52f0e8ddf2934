// The C functions of CFPreferences, which hand on to where domains are kept. Leaves out reading,
// which only the framework's own pages do here, without these functions.
#include "sim/foundation/property_list.hpp"
#include "sim/foundation/string.hpp"
#include "sim/platform/functions.hpp"
#include "sim/settings/preferences_daemon.hpp"

namespace sim {

namespace {

PreferencesDaemon& daemon(Process& process) { return process.device.service<PreferencesDaemon>(); }

// CoreFoundation's functions end a process that passes NULL where a text must be.
void requireTexts(const char* function, NSString* first, NSString* second) {
  if (!first || !second) throw Fault(std::string(function) + " with NULL");
}

void setAppValue(Process& process, NSString* key, Object* value, NSString* application) {
  requireTexts("CFPreferencesSetAppValue", key, application);
  PlistNode node = value ? toPropertyListNode(*value) : nullptr;
  if (value && !node) return;  // nothing that a property list can hold is not set
  daemon(process).set(process, application->text, key->text, std::move(node));
}

unsigned char appSynchronize(Process& process, NSString* application) {
  requireTexts("CFPreferencesAppSynchronize", application, application);
  daemon(process).synchronize(process, application->text);
  return 1;
}

}  // namespace

Functions preferenceFunctions() {
  return {
      bindFunction("CFPreferencesSetAppValue", &setAppValue),
      bindFunction("CFPreferencesAppSynchronize", &appSynchronize),
  };
}

}  // namespace sim
