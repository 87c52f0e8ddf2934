#include "sim/explore/explorer.hpp"

#include <fmt/format.h>

#include <fstream>

#include "sim/explore/playback.hpp"
#include "sim/explore/real_runtime.hpp"
#include "sim/search/child.hpp"
#include "sim/search/shrink.hpp"

namespace sim::explore {

namespace {

// The builds as one process has them loaded.
class Builds {
 public:
  explicit Builds(const std::vector<Build>& builds) {
    for (const Build& build : builds)
      if (build.program.empty())
        loaders_.push_back({build.name, build.make()});
      else
        programs_.push_back({build.name, build.program});
  }
  LibraryLoader& first() { return *loaders_.front().second; }

  // Whether all of them can play the line.
  bool canPlay(const std::string& line) const { return programs_.empty() || programsPlay(line); }

  // What is wrong with the scenario, its trace on the first build being known.
  std::optional<Violation> compare(const Lines& lines, const std::string& trace) {
    for (auto& [name, loader] : loaders_) {
      const bool again = loader.get() == &first();
      const Playback other = play(*loader, lines);
      if (other.violation) return other.violation;
      if (other.trace != trace)
        return Violation{"every run gives the same trace",
                         again ? "a second run differs" : name + " differs",
                         {}};
    }
    for (const auto& [name, program] : programs_)
      if (playedByProgram(program, lines) != trace)
        return Violation{"every run gives the same trace", name + " differs", {}};
    return std::nullopt;
  }
  std::optional<Violation> judge(const Lines& lines) {
    const Playback playback = play(first(), lines);
    if (playback.violation) return playback.violation;
    // What the device is in no state for is no scenario: a program would say so in its own words.
    return playback.line < lines.size() ? std::nullopt : compare(lines, playback.trace);
  }

 private:
  std::vector<std::pair<std::string, std::unique_ptr<LibraryLoader>>> loaders_;
  std::vector<std::pair<std::string, std::string>> programs_;
};

Violation died(const std::string& how) {
  return {"the simulator survives", "the whole program died (" + how + ")", {}};
}

// In a process of its own, as the scenario may end it.
std::optional<Violation> judgeIsolated(const std::vector<Build>& builds, const Lines& lines) {
  const auto outcome = search::isolated([&](const search::Tell& tell) {
    search::expectEndWithin(search::kLongestPiece);
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
  const Lines shortest = fails(lines) ? search::shrunk(lines, fails) : lines;
  const Violation last = judgeIsolated(builds, shortest).value_or(found);
  std::string text = fmt::format("# Broken: {} ({}). Found by exploring from seed {}.\n", last.rule,
                                 last.what, seed);
  text += joined(shortest);
  if (!last.expectation.empty()) text += last.expectation + "\n";
  return text;
}

// The scenario of a seed that ended its job: its lines up to the last.
Lines linesOf(const std::vector<Build>& builds, std::uint64_t seed) {
  const auto outcome = search::isolated([&](const search::Tell& tell) {
    search::expectEndWithin(search::kLongestPiece);
    Builds loaded(builds);
    Lines lines;
    drawAndPlay(loaded.first(), seed, lines, [&](const Lines& drawn) {
      tell(joined(drawn));
      return loaded.canPlay(drawn.back());
    });
    tell(joined(lines));
  });
  return outcome.messages.empty() ? Lines{} : split(outcome.messages.back());
}

search::Examined examine(const std::vector<Build>& builds, Builds& loaded,
                         const std::filesystem::path& keep, std::uint64_t seed) {
  Lines lines;
  const Playback playback = drawAndPlay(loaded.first(), seed, lines, [&](const Lines& drawn) {
    return loaded.canPlay(drawn.back());
  });
  if (!keep.empty()) std::ofstream(keep / (std::to_string(seed) + ".txt")) << joined(lines);
  auto violation = playback.violation;
  if (!violation) violation = loaded.compare(lines, playback.trace);
  if (!violation) return {std::nullopt, lines.size()};
  search::expectEndWithin(0);  // shrinking takes its time
  return {report(builds, seed, lines, *violation), lines.size()};
}

}  // namespace

std::size_t explore(const std::vector<Build>& builds, const search::SearchOptions& options,
                    const std::filesystem::path& keep, std::ostream& out, std::ostream& progress) {
  const auto prepare = [&]() -> std::function<search::Examined(std::uint64_t)> {
    auto loaded = std::make_shared<Builds>(builds);
    return [&, loaded](std::uint64_t seed) { return examine(builds, *loaded, keep, seed); };
  };
  const auto ended = [&builds](std::uint64_t seed, const std::string& how) {
    return report(builds, seed, linesOf(builds, seed), died(how));
  };
  return search::run({"scenarios", prepare, ended}, options, out, progress);
}

}  // namespace sim::explore
