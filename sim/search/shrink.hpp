// Makes a failing scenario as short as it can be. Nothing of a phone; leaves out changing lines:
// they stay as they are or go.
#pragma once
#include <functional>
#include <string>
#include <vector>

namespace sim::search {

using Lines = std::vector<std::string>;

// Leaves lines out, first many at a time, then single ones and pairs, until none can be spared.
// `fails` is true for the lines given, and decides for every shorter list.
Lines shrunk(Lines lines, const std::function<bool(const Lines&)>& fails);

}  // namespace sim::search
