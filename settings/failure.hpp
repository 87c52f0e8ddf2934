// What the user is told where a change could not be made.
#pragma once
#include "settings/store.hpp"

namespace corvalen::settings {

// Shows an alert, unless all went well. Main thread.
void tell(Outcome outcome);

}  // namespace corvalen::settings
