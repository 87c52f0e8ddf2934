// Makes a failing scenario as short as it can be.
#pragma once
#include <functional>

#include "sim/explore/playback.hpp"

namespace sim::explore {

// Leaves lines out, first many at a time, then single ones and pairs, until none can be spared.
// `fails` is true for the lines given, and decides for every shorter list.
Lines shrunk(Lines lines, const std::function<bool(const Lines&)>& fails);

}  // namespace sim::explore
