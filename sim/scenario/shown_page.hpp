// A page of the Settings app for other programs, such as the one that draws pictures of it. Stands
// in for what is seen of it on a screen; leaves out icons, fonts and places.
#pragma once
#include <nlohmann/json_fwd.hpp>
#include <string>

#include "sim/settings/settings_app.hpp"

namespace sim::scenario {

// An object with `title`, `button` (at the top right) and `groups`, each with `title`, `footer` and
// `rows`, each with `kind` (switch, chooser, button or app), `label`, `value` (of a switch a truth
// value, else a text), `enabled` and `checked`.
nlohmann::ordered_json asJson(const ShownPage& page);

}  // namespace sim::scenario
