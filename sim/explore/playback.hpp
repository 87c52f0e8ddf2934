// Plays a list of commands under watch. Stands in for a device in somebody's hands; leaves out
// expectations: the invariants are all that is asked.
#pragma once
#include <functional>

#include "sim/explore/invariants.hpp"
#include "sim/search/shrink.hpp"

namespace sim::explore {

using search::Lines;

struct Playback {
  std::string trace;
  std::optional<Violation> violation;
  std::size_t line = 0;  // after which it was found
};

// Whether a command that the device is in no state for ends a playback, as it makes no valid
// scenario, or is left out.
enum class OutOfPlace : std::uint8_t { Ends, LeftOut };

// Plays the lines on a fresh device, up to the first broken invariant.
Playback play(LibraryLoader& loader, const Lines& lines, OutOfPlace outOfPlace = OutOfPlace::Ends);

// Draws a scenario into `lines` as it plays it: commands that the device is in no state for are
// left out. `drawn` is told of the lines before the last of them is played, and answers whether it
// is: else it is left out too.
Playback drawAndPlay(
    LibraryLoader& loader, std::uint64_t seed, Lines& lines,
    const std::function<bool(const Lines&)>& drawn = [](const Lines&) { return true; });

Lines split(const std::string& text);
std::string joined(const Lines& lines);

}  // namespace sim::explore
