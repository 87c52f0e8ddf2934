// Searches through numbered pieces of work, several at a time, each job a process of its own: not
// even a crash of the whole program ends the search. Nothing of a phone; leaves out what a piece of
// work is, which sim/explore and sim/inject say.
#pragma once
#include <cstdint>
#include <functional>
#include <optional>
#include <ostream>
#include <string>

namespace sim::search {

struct SearchOptions {
  std::uint64_t first = 1;     // the first piece's number; the next ones count up from it
  std::uint64_t count = 1000;  // how many pieces
  unsigned jobs = 1;
  double minutes = 0;  // stop after so long, however many were tried; 0: never
};

struct Examined {
  std::optional<std::string> finding{};  // as it is to be printed
  std::uint64_t commands = 0;            // that were played
};

struct Search {
  std::string pieces;  // what a piece is, for people: "scenarios"
  // Called once in each job; what it answers examines a piece.
  std::function<std::function<Examined(std::uint64_t)>()> prepare;
  // The finding for a piece whose job died, and how: "signal 11". Called in the parent.
  std::function<std::string(std::uint64_t, const std::string&)> died;
};

// Findings go to `out`; progress, and the figures in the end, to `progress`. Stops early after a
// handful of findings. Returns how many there were.
std::size_t run(const Search& search, const SearchOptions& options, std::ostream& out,
                std::ostream& progress);

}  // namespace sim::search
