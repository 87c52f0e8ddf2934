// The frameworks whose presence in a process is not certain. Stands in for dyld's list of loaded
// images; leaves out Foundation and CoreFoundation, which every process has and nobody asks for,
// and the frameworks that a framework brings along.
#pragma once
#include <array>
#include <cstdint>
#include <optional>
#include <span>
#include <string>

#include "sim/core/value.hpp"

namespace sim {

// What classes, functions and exported variables come with. Always: with every process.
enum class Framework : std::uint8_t {
  Always,
  Accounts,
  Social,
  MediaRemote,
  UIKit,
  AudioToolbox,
  SystemConfiguration,
  TelephonyUtilities,
  Celestial,
  AppList,  // no framework, but a library that is found the same way
};

enum class Presence : std::uint8_t {
  Loaded,   // from the process's start
  Late,     // comes with the first dlopen of its path
  Missing,  // cannot be loaded
};

struct FrameworkImage {
  Framework framework;
  const char* name;
  const char* path;  // its install name
};
std::span<const FrameworkImage> frameworkImages();

// One process's frameworks; the device's are those of processes to come.
class Frameworks {
 public:
  Presence& operator[](Framework framework) { return all_[index(framework)]; }
  bool has(Framework framework) const { return all_[index(framework)] == Presence::Loaded; }
  bool isMissing(Framework framework) const { return all_[index(framework)] == Presence::Missing; }

 private:
  static std::size_t index(Framework framework) { return static_cast<std::size_t>(framework); }

  // SpringBoard does without accounts until somebody asks for them.
  std::array<Presence, 10> all_{Presence::Loaded, Presence::Late, Presence::Late};
};

// Handles, as dlopen answers them.
Address imageHandle(Framework framework);
std::optional<Framework> frameworkOfHandle(Address handle);

}  // namespace sim
