#include "sim/search/search.hpp"

#include <fmt/format.h>
#include <poll.h>

#include <chrono>
#include <list>
#include <memory>

#include "sim/search/child.hpp"
#include "sim/search/workspace.hpp"

namespace sim::search {

namespace {

using Clock = std::chrono::steady_clock;

constexpr std::size_t kEnough = 40;  // findings after which a search stops

// One job does every so many-th piece. It tells "S<number>" before each, "F<finding>", and
// "D<commands>" behind it.
void work(const Search& search, std::uint64_t number, std::uint64_t end, std::uint64_t step,
          const Tell& tell) {
  const auto examine = search.prepare();
  for (; number < end; number += step) {
    tell("S" + std::to_string(number));
    expectEndWithin(kLongestPiece);
    const Examined examined = examine(number);
    expectEndWithin(0);
    if (examined.finding) tell("F" + *examined.finding);
    tell("D" + std::to_string(examined.commands));
  }
}

class Running {
 public:
  Running(const Search& search, const SearchOptions& options, std::ostream& out,
          std::ostream& progress)
      : search_(search), options_(options), out_(out), progress_(progress) {}

  std::size_t run() {
    for (unsigned i = 0; i < options_.jobs; ++i) start(options_.first + i);
    while (!jobs_.empty() && findings_ < kEnough && !late()) {
      std::vector<pollfd> waiting;
      for (const Job& job : jobs_) waiting.push_back({job.child->descriptor(), POLLIN, 0});
      poll(waiting.data(), waiting.size(), 1000);
      // A job that ends leaves the list, and one that takes its place joins it at the end.
      auto job = jobs_.begin();
      for (const pollfd& one : waiting) {
        const auto here = job++;
        if (one.revents != 0) listen(here);
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
    std::uint64_t number;
  };

  std::uint64_t end() const { return options_.first + options_.count; }
  double seconds() const { return std::chrono::duration<double>(Clock::now() - started_).count(); }
  bool late() const { return options_.minutes > 0 && seconds() > options_.minutes * 60; }

  void start(std::uint64_t number) {
    if (number >= end()) return;
    jobs_.push_back({std::make_unique<Child>([this, number](const Tell& tell) {
                       work(search_, number, end(), options_.jobs, tell);
                     }),
                     number});
  }

  void listen(std::list<Job>::iterator job) {
    const auto messages = job->child->messages();
    for (const std::string& message : messages) {
      const std::string rest = message.substr(1);
      if (message[0] == 'S') job->number = std::stoull(rest);
      if (message[0] == 'F') found(rest);
      if (message[0] == 'D') {
        ++tried_;
        commands_ += std::stoull(rest);
      }
    }
    if (!messages.empty()) return;
    const std::string death = job->child->death();
    const std::uint64_t number = job->number;
    jobs_.erase(job);
    if (death.empty()) return;
    found(search_.died(number, death));
    ++tried_;
    start(number + options_.jobs);
  }

  void found(const std::string& finding) {
    ++findings_;
    out_ << finding << '\n' << std::flush;
  }

  void showProgress(bool last) {
    constexpr double kEvery = 5;  // seconds
    if (!last && seconds() < shown_ + kEvery) return;
    shown_ = seconds();
    const double rate = static_cast<double>(tried_) / std::max(shown_, 0.001);
    std::string line = fmt::format("{} {}, {} commands, {} findings, {:.0f} a second", tried_,
                                   search_.pieces, commands_, findings_, rate);
    if (!last) {
      double left = rate > 0 ? static_cast<double>(options_.count - tried_) / rate : 0;
      if (options_.minutes > 0) left = std::min(left, options_.minutes * 60 - shown_);
      line += fmt::format(", {:.0f} s left", left);
    }
    progress_ << line << '\n' << std::flush;
  }

  const Search& search_;
  const SearchOptions& options_;
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

std::size_t run(const Search& search, const SearchOptions& options, std::ostream& out,
                std::ostream& progress) {
  const Workspace workspace;
  return Running(search, options, out, progress).run();
}

}  // namespace sim::search
