// An app's own category on UIAlertView or NSTimer, under the very selectors of our library's and
// with another meaning, there before the library is loaded. Every call of its methods is an effect,
// `category CALL`.
//
// Stands in for what the runtime does with a category of the program's. Left out: categories that
// replace what the platform itself implements.
#pragma once
#include "sim/core/process.hpp"

namespace sim {

inline const std::string kAlertCategory = "UIAlertView";
inline const std::string kTimerCategory = "NSTimer";

// The categories that the process is to have, as far as their classes are there.
void addAppCategories(Process& process);

// The app shows an alert by its category, uses every method of it, and the user presses a button.
void useAlertCategory(Process& app);
// The app makes timers by its category, one that fires after a second and one that it fires itself.
void useTimerCategory(Process& app);

}  // namespace sim
