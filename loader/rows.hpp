// What the rows of the hook tables are made of.
#pragma once
#include <span>

#include "platform/foundation.hpp"
#include "platform/hook.hpp"
#include "platform/version.hpp"

namespace corvalen::loader {

using platform::MethodRow;

// A band of versions: from `first` on, up to `last`, which belongs to it or not.
struct VersionBand {
  double first;
  double last;
  bool includesLast;

  [[gnu::always_inline]] constexpr bool contains(double version) const {
    return first <= version && (version < last || (includesLast && version == last));
  }
  constexpr bool isEveryVersion() const { return first == 0 && last == kNoLimit; }

  static constexpr double kNoLimit = 1e9;
};

consteval VersionBand always() { return {0, VersionBand::kNoLimit, true}; }
consteval VersionBand from(double first) { return {first, VersionBand::kNoLimit, true}; }
consteval VersionBand below(double last) { return {0, last, false}; }
consteval VersionBand fromBelow(double first, double last) { return {first, last, false}; }
consteval VersionBand fromThrough(double first, double last) { return {first, last, true}; }

// Methods of one class that are replaced under one condition, after one look-up of the class.
struct HookGroup {
  const char* className;
  std::span<const MethodRow> rows;
  VersionBand versions;
};

// One method that is replaced if a file is there.
struct AddOnRow {
  platform::ConstantText path;
  const char* className;
  MethodRow row;
};

// One notification that is observed.
struct ObserverRow {
  platform::ConstantText name;
  CFNotificationCallback callback;
};

}  // namespace corvalen::loader
