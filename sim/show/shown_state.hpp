// What a device looks like at one moment, for those who draw it. Stands in for somebody who looks
// at the phone and knows what is plugged in; leaves out what only the processes know.
#pragma once
#include <nlohmann/json_fwd.hpp>

#include "sim/core/device.hpp"

namespace sim::show {

// The device as an object; docs/show.md says what is in it. An open settings page is drawn for it,
// which runs the page's code as a look at the phone would.
nlohmann::ordered_json stateOf(Device& device);

}  // namespace sim::show
