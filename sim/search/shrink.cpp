#include "sim/search/shrink.hpp"

namespace sim::search {

namespace {

using Fails = std::function<bool(const Lines&)>;

Lines without(const Lines& lines, std::size_t first, std::size_t count) {
  Lines shorter(lines.begin(), lines.begin() + static_cast<std::ptrdiff_t>(first));
  const std::size_t next = std::min(lines.size(), first + count);
  shorter.insert(shorter.end(), lines.begin() + static_cast<std::ptrdiff_t>(next), lines.end());
  return shorter;
}

// Leaves out runs of `count` lines wherever that still fails. True if any went.
bool dropRuns(Lines& lines, std::size_t count, const Fails& fails) {
  bool dropped = false;
  for (std::size_t at = 0; at < lines.size();) {
    Lines shorter = without(lines, at, count);
    if (!fails(shorter)) {
      at += count;
      continue;
    }
    lines = std::move(shorter);
    dropped = true;
  }
  return dropped;
}

// Two lines may need each other: one that starts something and one that ends it.
bool dropPair(Lines& lines, const Fails& fails) {
  for (std::size_t first = 0; first < lines.size(); ++first)
    for (std::size_t second = first + 1; second < lines.size(); ++second) {
      Lines shorter = without(without(lines, second, 1), first, 1);
      if (!fails(shorter)) continue;
      lines = std::move(shorter);
      return true;
    }
  return false;
}

}  // namespace

Lines shrunk(Lines lines, const Fails& fails) {
  constexpr std::size_t kFewForPairs = 24;
  for (std::size_t count = lines.size() / 2; count > 1; count /= 2) dropRuns(lines, count, fails);
  do {
    while (dropRuns(lines, 1, fails)) {
    }
  } while (lines.size() <= kFewForPairs && dropPair(lines, fails));
  return lines;
}

}  // namespace sim::search
