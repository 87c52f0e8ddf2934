// The versions of the system at which its classes change, as kCFCoreFoundationVersionNumber. Stands
// in for the releases' differences; leaves out those between releases of which no class here is
// another.
#pragma once
#include <limits>

namespace sim {

inline constexpr double kIOS7_1 = 847.24;
inline constexpr double kIOS8 = 900.0;  // below every iOS 8, above every iOS 7
inline constexpr double kIOS9 = 1240.1;

// From one version on, and below another.
struct Versions {
  double from = 0;
  double below = std::numeric_limits<double>::infinity();

  constexpr bool contain(double version) const { return from <= version && version < below; }

  static constexpr Versions since(double version) { return {version}; }
  static constexpr Versions before(double version) { return {0, version}; }
};
inline constexpr Versions kOnlyIOS8{kIOS8, kIOS9};

}  // namespace sim
