// Plays tours with injected faults, one at a time or in pairs. Stands in for years of a phone's bad
// luck; leaves out three at once, and faults that come and go within a run.
#pragma once
#include <memory>

#include "sim/inject/fault.hpp"
#include "sim/scenario/script.hpp"
#include "sim/search/search.hpp"

namespace sim::inject {

struct CampaignOptions {
  bool pairs = false;       // any two faults together, in place of each alone
  std::uint64_t seed = 0;   // mixes the order; 0: as they come
  bool countGiven = false;  // otherwise all are tried
};

// What is to be tried.
struct Campaign {
  std::function<std::unique_ptr<LibraryLoader>()> makeLoader;
  std::vector<scenario::Script> tours;
  scenario::Script checkUp;
};

// Every fault that can strike a tour: what it was answered, and the rest.
std::vector<InjectedFault> possibleFaults(LibraryLoader& loader, const scenario::Script& tour);

// Plays a tour with the faults, lifts them, ends all apps and plays the check-up, all on one
// device. What must always hold is watched; of the expectations only the check-up's count. Answers
// what was wrong, if anything.
struct Played {
  std::string wrong;
  std::size_t commands = 0;
};
Played play(LibraryLoader& loader, const scenario::Script& tour, const scenario::Script& checkUp,
            const std::vector<InjectedFault>& faults);

// Tries all faults on all tours. Returns the number of findings.
std::size_t inject(const Campaign& campaign, const CampaignOptions& options,
                   search::SearchOptions search, std::ostream& out, std::ostream& progress);

}  // namespace sim::inject
