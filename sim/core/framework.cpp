// Which frameworks there are, and how a process loads one and searches it for symbols.
#include "sim/core/framework.hpp"

#include <algorithm>

#include "sim/core/class_definition.hpp"

namespace sim {

namespace {

constexpr Address kFirstHandle = 0x40000000;  // nobody looks inside
constexpr Address kHandleStep = 0x10;

constexpr FrameworkImage kImages[] = {
    {Framework::Accounts, "Accounts", "/System/Library/Frameworks/Accounts.framework/Accounts"},
    {Framework::Social, "Social", "/System/Library/Frameworks/Social.framework/Social"},
    {Framework::MediaRemote, "MediaRemote",
     "/System/Library/PrivateFrameworks/MediaRemote.framework/MediaRemote"},
    {Framework::UIKit, "UIKit", "/System/Library/Frameworks/UIKit.framework/UIKit"},
    {Framework::AudioToolbox, "AudioToolbox",
     "/System/Library/Frameworks/AudioToolbox.framework/AudioToolbox"},
    {Framework::SystemConfiguration, "SystemConfiguration",
     "/System/Library/Frameworks/SystemConfiguration.framework/SystemConfiguration"},
    {Framework::TelephonyUtilities, "TelephonyUtilities",
     "/System/Library/PrivateFrameworks/TelephonyUtilities.framework/TelephonyUtilities"},
    {Framework::Celestial, "Celestial",
     "/System/Library/PrivateFrameworks/Celestial.framework/Celestial"},
    {Framework::AppList, "AppList", "/usr/lib/libapplist.dylib"},
};

}  // namespace

std::span<const FrameworkImage> frameworkImages() { return kImages; }

Address imageHandle(Framework framework) {
  return kFirstHandle + kHandleStep * static_cast<Address>(framework);
}

std::optional<Framework> frameworkOfHandle(Address handle) {
  const auto found = std::ranges::find(
      kImages, handle, [](const FrameworkImage& image) { return imageHandle(image.framework); });
  return found == std::end(kImages) ? std::nullopt : std::optional(found->framework);
}

// ---- In a process

bool Process::load(Framework framework) {
  if (frameworks_.isMissing(framework)) return false;
  if (frameworks_.has(framework)) return true;
  frameworks_[framework] = Presence::Loaded;
  const auto coming = classesOfLateFrameworks_.equal_range(framework);
  for (auto entry = coming.first; entry != coming.second; ++entry) registerClass(*entry->second);
  return true;
}

void Process::registerClassOf(Framework framework, Class& cls) {
  if (frameworks_.has(framework)) return registerClass(cls);
  hideClass(cls);
  classesOfLateFrameworks_.emplace(framework, &cls);
}

}  // namespace sim
