// Another extension on the same hooks, before ours or after it, changes nothing in any scenario.
#include <fstream>
#include <set>
#include <sstream>

#include "sim/platform/neighbour.hpp"
#include "sim/scenario/runner.hpp"
#include "tests/device_fixture.hpp"

namespace sim {
namespace {

const std::string kSeen = " neighbour ";

struct Traces {
  std::string others;            // all lines but the neighbour's
  std::vector<std::string> own;  // the neighbour's
};

class Neighbours : public ::testing::Test {
 protected:
  Traces run(const std::string& scenario, const std::string& order) {
    std::ostringstream out;
    std::ostringstream ignored;
    scenario::runScenario("scenario", "neighbour " + order + "\n" + scenario, *loader, {}, out,
                          ignored);
    Traces traces;
    std::istringstream lines(out.str());
    std::string line;
    std::getline(lines, line);  // the echo of the order
    while (std::getline(lines, line)) {
      if (!line.starts_with("> ") && line.find(kSeen) != std::string::npos)
        traces.own.push_back(line.substr(line.find(kSeen) + kSeen.size()));
      else
        traces.others += line + "\n";
    }
    return traces;
  }

  std::unique_ptr<LibraryLoader> loader = testedLibrary();
};

std::vector<std::string> allScenarios() {
  std::vector<std::string> texts;
  const std::filesystem::path root = std::filesystem::path(CORVALEN_SOURCE_DIR) / "scenarios";
  for (const auto& entry : std::filesystem::recursive_directory_iterator(root)) {
    if (entry.path().extension() != ".txt") continue;
    std::ifstream in(entry.path());
    std::string text{std::istreambuf_iterator<char>(in), std::istreambuf_iterator<char>()};
    const bool hasItsOwn = text.find("\nneighbour ") != std::string::npos;
    if (!hasItsOwn) texts.push_back(std::move(text));
  }
  return texts;
}

// "-[SpringBoard init]" of any line with that method, whatever its arguments.
bool isCallOf(const std::string& line, const HookedMethod& method) {
  std::string pattern = std::string("-[") + method.cls + "*";
  const std::string selector = method.selector;
  std::size_t start = 0;
  for (std::size_t colon = selector.find(':'); colon != std::string::npos;
       start = colon + 1, colon = selector.find(':', start))
    pattern += " " + selector.substr(start, colon - start + 1) + "*";
  if (start == 0) pattern += " " + selector;
  return scenario::matches(pattern + "]", line);
}

TEST_F(Neighbours, EveryScenarioGivesTheSameTraceInBothOrders) {
  std::set<std::string> met[2];
  const auto scenarios = allScenarios();
  ASSERT_GT(scenarios.size(), 300u);
  for (const std::string& scenario : scenarios) {
    const Traces alone = run(scenario, "none");
    EXPECT_TRUE(alone.own.empty());
    for (const bool after : {false, true}) {
      const Traces beside = run(scenario, after ? "after" : "before");
      EXPECT_EQ(beside.others, alone.others) << (after ? "after:\n" : "before:\n") << scenario;
      met[after].insert(beside.own.begin(), beside.own.end());
    }
  }
  for (const bool after : {false, true}) {
    const auto was = [&](const auto& isIt) { return std::ranges::any_of(met[after], isIt); };
    for (const HookedMethod& method : neighbourMethods())
      EXPECT_TRUE(was([&](const std::string& line) { return isCallOf(line, method); }))
          << method.cls << " " << method.selector << (after ? " after" : " before");
    EXPECT_TRUE(was([](const std::string& line) { return line.starts_with(kNeighbourFunction); }));
  }
}

}  // namespace
}  // namespace sim
