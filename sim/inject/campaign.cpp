#include "sim/inject/campaign.hpp"

#include <fmt/format.h>

#include <numeric>

#include "sim/explore/invariants.hpp"
#include "sim/inject/injector.hpp"
#include "sim/platform/device_actions.hpp"
#include "sim/search/random.hpp"

namespace sim::inject {

namespace {

using scenario::Command;
using scenario::Expectation;
using scenario::Line;
using scenario::Script;

constexpr Microseconds kSettle = 120'000'000;  // until whatever was late has come

// One device on which a tour and the check-up are played.
class Run {
 public:
  Run(LibraryLoader& loader, const std::vector<InjectedFault>& faults)
      : output_(nowhere_, scenario::Format::Text),
        session_(loader, output_, false),
        invariants_(session_, excusedRules(faults)) {}

  Device& device() { return session_.device(); }
  std::size_t commands() const { return commands_; }

  // The tour as far as it goes: a command that the device is in no state for is left out.
  std::string tour(const Script& script, Injector& injector) {
    device().injection = &injector;
    for (const Line& line : script.lines) {
      const auto* command = std::get_if<Command>(&line.content);
      if (!command) continue;
      if (injector.before(device(), command->echo)) invariants_.settingsChangedOutside();
      try {
        session_.run(*command);
      } catch (const ActionError&) {
        continue;
      }
      injector.after(device());
      ++commands_;
      if (const auto violation = invariants_.check(command->echo))
        return at(script, line, violation->rule + ": " + violation->what);
    }
    return {};
  }

  // The faults are over; what they left behind has its time, and all apps end.
  void settle() {
    device().injection = nullptr;
    device().advance(kSettle);
    std::vector<std::string> apps;
    for (const Process* process : device().processes())
      if (!process->isSpringBoard()) apps.push_back(process->identifier);
    for (const std::string& app : apps) end(device(), app);
    device().drain();
  }

  std::string checkUp(const Script& script) {
    for (const Line& line : script.lines) {
      if (const auto* command = std::get_if<Command>(&line.content)) {
        try {
          session_.run(*command);
        } catch (const ActionError& error) {
          return at(script, line, error.what());
        }
        ++commands_;
        if (const auto violation = invariants_.check(command->echo))
          return at(script, line, violation->rule + ": " + violation->what);
      } else {
        const auto& expectation = std::get<Expectation>(line.content);
        if (!session_.holds(expectation)) return at(script, line, expectation.written);
      }
    }
    return {};
  }

 private:
  static std::string at(const Script& script, const Line& line, const std::string& what) {
    return fmt::format("{}:{}: {}", script.file, line.number, what);
  }

  std::ostringstream nowhere_;
  scenario::Output output_;
  scenario::Session session_;
  explore::Invariants invariants_;
  std::size_t commands_ = 0;
};

void addFixedFaults(std::vector<InjectedFault>& faults) {
  for (const long late : {200, 1500, 30000}) faults.push_back({FaultKind::LateTimers, {}, late});
  for (const long times : {2, 3}) faults.push_back({FaultKind::Doubled, {}, times});
  for (const long late : {100, 1000, 45000}) faults.push_back({FaultKind::LateNotices, {}, late});
  faults.push_back({FaultKind::LostNotices, {}, 0});
  for (const long way : {0, 1, 2}) faults.push_back({FaultKind::AlertGoes, {}, way});
  constexpr long kLongestSettings = 1400;
  constexpr long kCutEvery = 23;
  for (long bytes = 0; bytes < kLongestSettings; bytes += kCutEvery)
    faults.push_back({FaultKind::CutSettings, {}, bytes});
}

}  // namespace

std::vector<InjectedFault> possibleFaults(LibraryLoader& loader, const Script& tour) {
  Run run(loader, {});
  Injector injector({});
  const std::string wrong = run.tour(tour, injector);
  if (!wrong.empty()) throw std::runtime_error("without any fault: " + wrong);
  std::vector<InjectedFault> faults;
  for (const auto& call : injector.answered()) faults.push_back({FaultKind::Nothing, call, 0});
  for (const auto& call : injector.initialisers()) faults.push_back({FaultKind::Another, call, 0});
  for (const auto& [process, step] : injector.livedAt())
    faults.push_back({FaultKind::Death, process, step});
  addFixedFaults(faults);
  return faults;
}

Played play(LibraryLoader& loader, const Script& tour, const Script& checkUp,
            const std::vector<InjectedFault>& faults) {
  Run run(loader, faults);
  Injector injector(faults);
  std::string wrong = run.tour(tour, injector);
  if (wrong.empty()) {
    run.settle();
    wrong = run.checkUp(checkUp);
  }
  return {wrong, run.commands()};
}

// ---- All of them

namespace {

// The faults of one tour, tried alone or two at a time, in an order mixed by the seed.
class Trials {
 public:
  Trials(const Campaign& campaign, const CampaignOptions& options) : campaign_(campaign) {
    const auto loader = campaign.makeLoader();
    for (std::size_t tour = 0; tour < campaign.tours.size(); ++tour) {
      faults_.push_back(possibleFaults(*loader, campaign.tours[tour]));
      const std::size_t count = faults_.back().size();
      for (std::uint32_t first = 0; first < count; ++first) {
        if (!options.pairs) order_.push_back({tour, first, first});
        for (std::uint32_t second = first + 1; options.pairs && second < count; ++second)
          order_.push_back({tour, first, second});
      }
    }
    if (options.seed == 0) return;
    search::Random random(options.seed);
    for (std::size_t i = order_.size(); i > 1; --i)
      std::swap(order_[i - 1], order_[random.below(i)]);
  }

  std::size_t size() const { return order_.size(); }
  std::size_t distinct() const {
    return std::accumulate(faults_.begin(), faults_.end(), std::size_t{0},
                           [](std::size_t sum, const auto& some) { return sum + some.size(); });
  }

  std::vector<InjectedFault> faults(std::uint64_t number) const {
    const Trial& trial = order_.at(number);
    const auto& all = faults_[trial.tour];
    std::vector<InjectedFault> chosen = {all[trial.first]};
    if (trial.second != trial.first) chosen.push_back(all[trial.second]);
    return chosen;
  }
  const Script& tour(std::uint64_t number) const { return campaign_.tours[order_.at(number).tour]; }
  std::string report(std::uint64_t number, const std::string& wrong) const {
    return fmt::format("{}: when {}:\n  {}", tour(number).file, names(faults(number)), wrong);
  }

 private:
  struct Trial {
    std::size_t tour;
    std::uint32_t first;
    std::uint32_t second;
  };
  const Campaign& campaign_;
  std::vector<std::vector<InjectedFault>> faults_;  // of each tour
  std::vector<Trial> order_;
};

}  // namespace

std::size_t inject(const Campaign& campaign, const CampaignOptions& options,
                   search::SearchOptions search, std::ostream& out, std::ostream& progress) {
  const Trials trials(campaign, options);
  search.first = 0;
  if (!options.countGiven || search.count > trials.size()) search.count = trials.size();
  progress << fmt::format("{} faults in {} tours, {} trials\n", trials.distinct(),
                          campaign.tours.size(), trials.size());
  const auto prepare = [&]() -> std::function<search::Examined(std::uint64_t)> {
    const std::shared_ptr<LibraryLoader> loader = campaign.makeLoader();
    return [&, loader](std::uint64_t number) {
      const Played played =
          play(*loader, trials.tour(number), campaign.checkUp, trials.faults(number));
      search::Examined examined;
      examined.commands = played.commands;
      if (!played.wrong.empty()) examined.finding = trials.report(number, played.wrong);
      return examined;
    };
  };
  const auto died = [&](std::uint64_t number, const std::string& how) {
    return trials.report(number, "the whole program died (" + how + ")");
  };
  return search::run({"trials", prepare, died}, search, out, progress);
}

}  // namespace sim::inject
