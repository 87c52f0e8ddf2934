// The platform's version, and where behaviour changes. Read afresh at each test: a constant to the
// compiler, it may be another value to whoever tests the library, so that no test may go by an
// earlier one's reading. Leaves out the releases at which nothing changes.
#pragma once
#include "platform/c_abi.hpp"

namespace platform {

// docs/decisions.md: Versions are read each time
inline double version() {
  return *static_cast<const volatile double*>(&kCFCoreFoundationVersionNumber);
}

// Where behaviour changes: the values that the releases report.
inline constexpr double kIOS7_0 = 847.2;
inline constexpr double kIOS7_1 = 847.24;
inline constexpr double kIOS8 = 900.0;  // below every iOS 8, above every iOS 7
inline constexpr double kIOS8_4 = 1145.15;
inline constexpr double kIOS9 = 1240.1;
inline constexpr double kLastSupported = 1280.0;

// Between the first and the last supported release, both included.
inline bool versionIsSupported() { return kIOS7_0 <= version() && version() <= kLastSupported; }

}  // namespace platform
