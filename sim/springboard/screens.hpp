// What SpringBoard shows: lock screen, backlight, Control Center, home screen and app switcher, and
// the objects on them that scenario commands act on. Leaves out geometry, animations, pages and
// folders.
#pragma once
#include "sim/foundation/string.hpp"

namespace sim {

class SBApplicationIcon final : public Object {
 public:
  SBApplicationIcon(Process& process, const std::string& app)
      : Object(process), identifier_(makeString(process, app)) {}
  NSString* applicationBundleID() const { return identifier_.get(); }

 private:
  Ref<NSString> identifier_;
};

class SBDisplayItem final : public Object {
 public:
  SBDisplayItem(Process& process, const std::string& app)
      : Object(process), identifier_(makeString(process, app)) {}
  NSString* displayIdentifier() const { return identifier_.get(); }

 private:
  Ref<NSString> identifier_;
};

// Objects that SpringBoard holds until the call that they are passed to lets go of them: the icon
// that is launched, the item that leaves the switcher. Borrowed.
SBApplicationIcon* iconOf(Process& springBoard, const std::string& app);
SBDisplayItem* switcherItem(Process& springBoard, const std::string& app);

}  // namespace sim
