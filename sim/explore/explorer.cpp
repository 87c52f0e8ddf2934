#include "sim/explore/explorer.hpp"

#include <fmt/format.h>
#include <poll.h>

#include <chrono>
#include <cstdlib>
#include <filesystem>
#include <list>

#include "sim/explore/child.hpp"
#include "sim/explore/playback.hpp"
#include "sim/explore/shrink.hpp"

namespace sim::explore {

namespace {

using Clock = std::chrono::steady_clock;

constexpr unsigned kLongest = 60;  // seconds for one scenario
constexpr std::size_t kEnough = 5;  // findings after which a search stops

// The builds as one process has them loaded.
class Builds {
 public:
  explicit Builds(const std::vector<Build>& builds) {
    for (const Build& build : builds) loaders_.push_back({build.name, build.make()});
  }
  LibraryLoader& first() { return *loaders_.front().second; }

  // What is wrong with the scenario, its trace on the first build being known.
  std::optional<Violation> compare(const Lines& lines, const std::string& trace) {
    for (auto& [name, loader] : loaders_) {
      const bool again = loader.get() == &first();
      const Playback other = play(*loader, lines);
      if (other.violation) return other.violation;
      if (other.trace != trace)
        return Violation{"every run gives the same trace",
                         again ? "a second run differs" : name + " differs", {}};
    }
    return std::nullopt;
  }
  std::optional<Violation> judge(const Lines& lines) {
    const Playback playback = play(first(), lines);
    return playback.violation ? playback.violation : compare(lines, playback.trace);
  }

 private:
  std::vector<std::pair<std::string, std::unique_ptr<LibraryLoader>>> loaders_;
};

Violation died(const std::string& how) {
  return {"the simulator survives", "the whole program died (" + how + ")", {}};
}

// In a process of its own, as the scenario may end it.
std::optional<Violation> judgeIsolated(const std::vector<Build>& builds, const Lines& lines) {
  const Outcome outcome = isolated([&](const Tell& tell) {
    expectEndWithin(kLongest);
    if (const auto violation = Builds(builds).judge(lines)) {
      tell(violation->rule);
      tell(violation->what);
      tell(violation->expectation);
    }
  });
  if (!outcome.death.empty()) return died(outcome.death);
  if (outcome.messages.size() != 3) return std::nullopt;
  return Violation{outcome.messages[0], outcome.messages[1], outcome.messages[2]};
}

// A scenario file that shows the finding, as short as can be.
std::string report(const std::vector<Build>& builds, std::uint64_t seed, const Lines& lines,
                   const Violation& found) {
  const auto fails = [&](const Lines& shorter) {
    const auto violation = judgeIsolated(builds, shorter);
    return violation && violation->rule == found.rule;
  };
  const Lines shortest = fails(lines) ? shrunk(lines, fails) : lines;
  const Violation last = judgeIsolated(builds, shortest).value_or(found);
  std::string text = fmt::format("# Broken: {} ({}). Found by exploring from seed {}.\n", last.rule,
                                 last.what, seed);
  text += joined(shortest);
  if (!last.expectation.empty()) text += last.expectation + "\n";
  return text;
}

// ---- One job: every so many-th seed. Tells "S<seed>" before each scenario, "D<commands>" behind
// it, and "F<report>" for a finding.

void work(const std::vector<Build>& builds, std::uint64_t seed, std::uint64_t end,
          std::uint64_t step, const Tell& tell) {
  Builds loaded(builds);
  for (; seed < end; seed += step) {
    expectEndWithin(kLongest);
    tell("S" + std::to_string(seed));
    Lines lines;
    const Playback playback = drawAndPlay(loaded.first(), seed, lines);
    auto violation = playback.violation;
    if (!violation) violation = loaded.compare(lines, playback.trace);
    expectEndWithin(0);
    if (violation) tell("F" + report(builds, seed, lines, *violation));
    tell("D" + std::to_string(lines.size()));
  }
}

// The scenario of a seed that ended its job: its lines up to the last.
Lines linesOf(const std::vector<Build>& builds, std::uint64_t seed) {
  const Outcome outcome = isolated([&](const Tell& tell) {
    expectEndWithin(kLongest);
    Builds loaded(builds);
    Lines lines;
    drawAndPlay(loaded.first(), seed, lines, [&](const Lines& drawn) { tell(joined(drawn)); });
    tell(joined(lines));
  });
  return outcome.messages.empty() ? Lines{} : split(outcome.messages.back());
}

// Where all files of a search go, also those of jobs that died.
class Workspace {
 public:
  Workspace() {
    std::string pattern = (std::filesystem::temp_directory_path() / "corvalen-XXXXXX").string();
    if (!mkdtemp(pattern.data())) throw std::runtime_error("cannot make " + pattern);
    folder_ = pattern;
    setenv("TMPDIR", folder_.c_str(), 1);
  }
  ~Workspace() {
    std::error_code ignored;
    std::filesystem::remove_all(folder_, ignored);
    setenv("TMPDIR", folder_.parent_path().c_str(), 1);
  }
  Workspace(const Workspace&) = delete;
  Workspace& operator=(const Workspace&) = delete;

 private:
  std::filesystem::path folder_;
};

// ---- The whole search

class Search {
 public:
  Search(const std::vector<Build>& builds, const ExploreOptions& options, std::ostream& out,
         std::ostream& progress)
      : builds_(builds), options_(options), out_(out), progress_(progress) {}

  std::size_t run() {
    for (unsigned i = 0; i < options_.jobs; ++i) start(options_.seed + i);
    while (!jobs_.empty() && findings_ < kEnough && !late()) {
      std::vector<pollfd> waiting;
      for (const Job& job : jobs_) waiting.push_back({job.child->descriptor(), POLLIN, 0});
      poll(waiting.data(), waiting.size(), 1000);
      std::size_t index = 0;
      for (auto job = jobs_.begin(); job != jobs_.end(); ++index) {
        const auto here = job++;
        if (waiting[index].revents != 0) listen(here);
      }
      showProgress(false);
    }
    jobs_.clear();
    showProgress(true);
    return findings_;
  }

 private:
  struct Job {
    std::unique_ptr<Child> child;
    std::uint64_t seed;
  };

  std::uint64_t end() const { return options_.seed + options_.count; }
  double seconds() const {
    return std::chrono::duration<double>(Clock::now() - started_).count();
  }
  bool late() const { return options_.minutes > 0 && seconds() > options_.minutes * 60; }

  void start(std::uint64_t seed) {
    if (seed >= end()) return;
    jobs_.push_back({std::make_unique<Child>([this, seed](const Tell& tell) {
                       work(builds_, seed, end(), options_.jobs, tell);
                     }),
                     seed});
  }

  void listen(std::list<Job>::iterator job) {
    const auto messages = job->child->messages();
    for (const std::string& message : messages) {
      const std::string rest = message.substr(1);
      if (message[0] == 'S') job->seed = std::stoull(rest);
      if (message[0] == 'F') found(rest);
      if (message[0] == 'D') {
        ++tried_;
        commands_ += std::stoull(rest);
      }
    }
    if (!messages.empty()) return;
    const std::string death = job->child->death();
    const std::uint64_t seed = job->seed;
    jobs_.erase(job);
    if (death.empty()) return;
    found(report(builds_, seed, linesOf(builds_, seed), died(death)));
    ++tried_;
    start(seed + options_.jobs);
  }

  void found(const std::string& scenario) {
    ++findings_;
    out_ << scenario << '\n' << std::flush;
  }

  void showProgress(bool last) {
    constexpr double kEvery = 5;  // seconds
    if (!last && seconds() < shown_ + kEvery) return;
    shown_ = seconds();
    const double rate = static_cast<double>(tried_) / std::max(shown_, 0.001);
    std::string line = fmt::format("{} scenarios, {} commands, {} findings, {:.0f} a second",
                                   tried_, commands_, findings_, rate);
    if (!last) {
      double left = rate > 0 ? static_cast<double>(options_.count - tried_) / rate : 0;
      if (options_.minutes > 0) left = std::min(left, options_.minutes * 60 - shown_);
      line += fmt::format(", {:.0f} s left", left);
    }
    progress_ << line << '\n' << std::flush;
  }

  const std::vector<Build>& builds_;
  const ExploreOptions& options_;
  std::ostream& out_;
  std::ostream& progress_;
  std::list<Job> jobs_;
  std::uint64_t tried_ = 0;
  std::uint64_t commands_ = 0;
  std::size_t findings_ = 0;
  Clock::time_point started_ = Clock::now();
  double shown_ = 0;
};

}  // namespace

std::size_t explore(const std::vector<Build>& builds, const ExploreOptions& options,
                    std::ostream& out, std::ostream& progress) {
  const Workspace workspace;
  return Search(builds, options, out, progress).run();
}

}  // namespace sim::explore
