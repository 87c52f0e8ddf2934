// What stands behind a trace: calls inside of calls, and a scenario that is still being written.
// Shows that nothing of it is made up: effects are the trace's own, in its order.
#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <iostream>
#include <nlohmann/json.hpp>
#include <sstream>

#include "sim/scenario/completion.hpp"
#include "sim/scenario/reference.hpp"
#include "sim/scenario/shell.hpp"
#include "sim/show/lanes.hpp"
#include "sim/show/static_page.hpp"
#include "sim/show/whole_run.hpp"
#include "tests/device_fixture.hpp"

namespace sim::show {
namespace {

namespace fs = std::filesystem;

std::string contents(const fs::path& file) {
  std::ifstream in(file, std::ios::binary);
  return {std::istreambuf_iterator<char>(in), {}};
}

class ShowTest : public ::testing::Test {
 protected:
  std::unique_ptr<LibraryLoader> loader_ = testedLibrary();
  PlayedDevice device_{*loader_, {}};
  std::size_t from_ = 0;
  std::vector<Json> steps_;  // of the last play

  std::optional<WrongLine> play(const Lines& lines) {
    steps_.clear();
    return device_.play(
        lines, [this](std::size_t from) { from_ = from; },
        [this](const Json& step) { steps_.push_back(step); });
  }
  // The rows of a kind in a step, as their calls.
  std::vector<std::string> calls(std::size_t step, const std::string& kind) const {
    std::vector<std::string> all;
    for (const Json& row : steps_.at(step)["rows"])
      if (row["kind"] == kind) all.push_back(row["call"]);
    return all;
  }
  const Json& row(std::size_t step, const std::string& kind, const std::string& start) const {
    static const Json none;
    for (const Json& row : steps_.at(step)["rows"])
      if (row["kind"] == kind && row["call"].get<std::string>().starts_with(start)) return row;
    ADD_FAILURE() << "no " << kind << " " << start;
    return none;
  }
};

const Lines kPlayPressed = {"app com.spotify.client \"Spotify\"", "prefs iea9AQXrEmhSZ4u yes",
                            "prefs 2I8UQMOAwU5nnNZt \"com.spotify.client\"", "boot",
                            "tap-transport 3"};
const std::string kTap = "-[MPUSystemMediaControlsViewController transportControlsView:";

TEST_F(ShowTest, EffectsOfEveryScenarioAreItsTraceInItsOrder) {
  for (const auto& entry : fs::recursive_directory_iterator(CORVALEN_SOURCE_DIR "/scenarios")) {
    if (entry.path().extension() != ".txt") continue;
    const std::string text = contents(entry.path());
    std::ostringstream trace;
    std::ostringstream errors;
    scenario::runScenario("scenario", text, *loader_, {}, trace, errors);
    std::string expected;
    std::istringstream lines(trace.str());
    for (std::string line; std::getline(lines, line);)
      if (!line.starts_with("> ") && !line.starts_with("= ")) expected += line + '\n';
    std::string shown;
    for (const Json& step : playWhole("scenario", text, *loader_, {}, errors).steps)
      for (const Json& row : step["rows"])
        if (row["kind"] == "effect")
          shown += scenario::shownTime(row["time"]) + ' ' + row["process"].get<std::string>() +
                   ' ' + row["call"].get<std::string>() + '\n';
    EXPECT_EQ(shown, expected) << entry.path();
  }
}

TEST_F(ShowTest, ATapThatTheLibraryTakesOverSaysSoAndHoldsWhatCameOfIt) {
  ASSERT_FALSE(play(kPlayPressed));
  const Json& tap = row(4, "hook", kTap);
  EXPECT_EQ(tap["taken"], true);
  const Json& launch = row(4, "effect", "-[SpringBoard launchApplicationWithIdentifier:");
  EXPECT_EQ(launch["by"], "passed");  // by the library's own hook of the launch
  const auto hook = launch["parent"].get<std::size_t>();
  const auto& rows = steps_[4]["rows"];
  EXPECT_EQ(rows[hook]["kind"], "hook");
  EXPECT_EQ(rows[hook]["taken"], false);
  EXPECT_EQ(rows[rows[hook]["parent"].get<std::size_t>()]["call"], tap["call"]);
}

TEST_F(ShowTest, ATapThatIsPassedOnSaysSo) {
  ASSERT_FALSE(play({"boot", "tap-transport 3"}));
  EXPECT_EQ(row(1, "hook", kTap)["taken"], false);
  EXPECT_EQ(row(1, "effect", kTap)["by"], "passed");
}

TEST_F(ShowTest, SettingsThatAHookReadsStandInsideOfItWithTheirAnswers) {
  ASSERT_FALSE(play(kPlayPressed));
  const Json& read = row(4, "call", "-[NSMutableDictionary objectForKey:\"2I8UQMOAwU5nnNZt\"]");
  EXPECT_EQ(read["answer"], "\"com.spotify.client\"");
  EXPECT_EQ(steps_[4]["rows"][read["parent"].get<std::size_t>()]["kind"], "hook");
}

TEST_F(ShowTest, ProcessesSignalsAndTimersHaveRows) {
  Lines lines = kPlayPressed;
  lines.insert(lines.end(), {"advance 10", "end com.spotify.client"});
  ASSERT_FALSE(play(lines));
  EXPECT_EQ(calls(3, "started").size(), 1u);
  EXPECT_EQ(calls(4, "started").size(), 1u);
  EXPECT_EQ(calls(4, "delivered").front(), "QjnUR4g9fc9hLq");
  EXPECT_FALSE(calls(5, "timer").empty());
  EXPECT_EQ(row(6, "ended", "")["process"], "com.spotify.client");
}

TEST_F(ShowTest, WhatBeginsLikeTheOneBeforeGoesOnFromThere) {
  ASSERT_FALSE(play(kPlayPressed));
  Lines more = kPlayPressed;
  more.emplace_back("advance 1");
  ASSERT_FALSE(play(more));
  EXPECT_EQ(from_, 5u);
  EXPECT_EQ(steps_.size(), 1u);
}

TEST_F(ShowTest, AnotherWayForwardIsWhatAFreshDeviceShows) {
  Lines other = kPlayPressed;
  other.back() = "tap-transport 4";
  ASSERT_FALSE(play(kPlayPressed));
  ASSERT_FALSE(play(other));
  EXPECT_EQ(from_, 4u);
  ASSERT_EQ(steps_.size(), 1u);
  std::ostringstream errors;
  std::string text;
  for (const std::string& line : other) text += line + '\n';
  EXPECT_EQ(steps_[0], playWhole("s", text, *loader_, {}, errors).steps[4]);
}

TEST_F(ShowTest, BackInTimeIsAShorterScenario) {
  ASSERT_FALSE(play(kPlayPressed));
  ASSERT_FALSE(play({kPlayPressed.begin(), kPlayPressed.end() - 1}));
  EXPECT_TRUE(steps_.empty());
  ASSERT_FALSE(play(kPlayPressed));
  EXPECT_EQ(from_, 4u);
  EXPECT_EQ(steps_.size(), 1u);
}

TEST_F(ShowTest, AWrongLinePlaysNothingAndLeavesTheDeviceAsItIs) {
  ASSERT_FALSE(play({"boot"}));
  const auto wrong = play({"boot", "advance 1", "fly"});
  ASSERT_TRUE(wrong);
  EXPECT_EQ(wrong->line, 2u);
  EXPECT_EQ(wrong->message, "unknown command fly");
  EXPECT_TRUE(steps_.empty());
  ASSERT_FALSE(play({"boot", "advance 1"}));
  EXPECT_EQ(from_, 1u);
}

TEST_F(ShowTest, ALineFeedWithinALineIsWrong) { EXPECT_TRUE(play({"boot\nboot"})); }

TEST_F(ShowTest, ACommandThatCannotBeCarriedOutIsTheLastStep) {
  ASSERT_FALSE(play({"boot", "press 0", "advance 1"}));
  ASSERT_EQ(steps_.size(), 2u);
  EXPECT_EQ(steps_[1]["error"], "no alert is shown");
  ASSERT_FALSE(play({"boot", "advance 1"}));  // and can be taken back
  EXPECT_EQ(steps_.back()["state"]["time"], 1000000);
}

TEST_F(ShowTest, ExpectationsSayWhetherTheyHold) {
  ASSERT_FALSE(play({"boot", "expect-nothing", "remote 1", "expect-result YES"}));
  EXPECT_EQ(steps_[1]["holds"], false);
  EXPECT_FALSE(steps_[1]["instead"].empty());
  EXPECT_EQ(steps_[2]["answer"], true);
  EXPECT_EQ(steps_[3]["holds"], true);
}

TEST_F(ShowTest, TheStateIsWhatThePhoneLooksLike) {
  ASSERT_FALSE(
      play({"app com.spotify.client \"Spotify\"", "locked yes", "prefs Key \"a\"", "boot",
            "passcode yes yes no", "track com.spotify.client paused", "headphones in", "unlock"}));
  const Json& before = steps_[6]["state"];
  EXPECT_EQ(before["locked"], true);
  EXPECT_EQ(before["passcode"], true);
  EXPECT_EQ(before["headphones"], true);
  EXPECT_EQ(before["track"]["playing"], false);
  EXPECT_EQ(before["apps"][1]["name"], "Spotify");
  EXPECT_EQ(before["settingsFile"]["Key"], "a");
  const Json& after = steps_[7]["state"];
  EXPECT_EQ(after["passcode"], false);
  ASSERT_EQ(after["alerts"].size(), 1u);  // the greeting
  EXPECT_FALSE(after["alerts"][0]["buttons"].empty());
}

TEST_F(ShowTest, AnOpenSettingsPageIsPartOfTheStateAndLookingAtItChangesNothing) {
  const Lines open = {"boot", "settings open", "settings set \"Enabled\" yes"};
  ASSERT_FALSE(play(open));
  EXPECT_EQ(steps_[0]["state"]["settings"], nullptr);
  EXPECT_EQ(steps_[1]["state"]["settings"]["groups"].empty(), false);
  for (const Json& row : steps_[2]["rows"]) EXPECT_NE(row["kind"], "ended");
}

// ---- What is printed of it

TEST(StaticPage, HoldsWhatHappenedAndNoTextOfItIsMarkup) {
  const fs::path folder = fs::temp_directory_path() / "corvalen-page-test";
  fs::create_directories(folder);
  std::ofstream(folder / "index.html") << "<link rel=\"stylesheet\" href=\"style.css\">"
                                          "<script type=\"module\" src=\"main.js\"></script>";
  std::ofstream(folder / "style.css") << "p {}";
  std::ofstream(folder / "modules.txt") << "a.js\nmain.js\n";
  std::ofstream(folder / "a.js") << "export const one = 1;\n";
  std::ofstream(folder / "main.js") << "import { one } from \"./a.js\";\nconsole.log(one);\n";
  const auto loader = testedLibrary();
  std::ostringstream out;
  std::ostringstream errors;
  const auto print = [&](const std::string& text) {
    return printStaticPage(folder, "host", "file", text, *loader, {}, out, errors);
  };
  EXPECT_EQ(print("app a.b \"</script><p>\"\nboot\n"), scenario::Status::Held);
  const std::string page = out.str();
  EXPECT_EQ(page.find("</script><p>"), page.npos);
  EXPECT_NE(page.find("\\u003c/script>"), page.npos);
  EXPECT_NE(page.find("const one = 1;\nconsole.log(one);"), page.npos);
  EXPECT_EQ(page.find("import "), page.npos);
  EXPECT_NE(page.find("<style>\np {}</style>"), page.npos);
  EXPECT_EQ(print("boot\nexpect-nothing\n"), scenario::Status::Failed);
  EXPECT_EQ(errors.str(), "file:2: does not hold: expect-nothing\n");
  EXPECT_EQ(print("fly\n"), scenario::Status::Wrong);
  fs::remove(folder / "a.js");
  EXPECT_THROW(print("boot\n"), std::runtime_error);
  fs::remove_all(folder);
}

TEST(Lanes, AColumnForEachProcessAndSignalsBothWays) {
  const auto loader = testedLibrary();
  std::ostringstream out;
  std::ostringstream errors;
  printLanes("file", contents(CORVALEN_SOURCE_DIR "/scenarios/press-play.txt"), *loader, {}, 120,
             out, errors);
  const std::string lanes = out.str();
  EXPECT_EQ(errors.str(), "");
  EXPECT_NE(lanes.find("│ com.apple.springboard"), lanes.npos);
  EXPECT_NE(lanes.find("» QjnUR4g9fc9hLq"), lanes.npos);
  EXPECT_NE(lanes.find("│ « QjnUR4g9fc9hLq"), lanes.npos);
  EXPECT_NE(lanes.find("taken over: -[MPUSystemMediaControlsViewController"), lanes.npos);
}

std::string coloured(const std::string& text) {
  const auto loader = testedLibrary();
  std::ostringstream out;
  std::ostringstream errors;
  scenario::RunOptions options;
  options.colour = true;
  scenario::runScenario("file", text, *loader, options, out, errors);
  return out.str();
}

TEST(Colours, SayWhatBecameOfTheCall) {
  std::string text;
  for (const std::string& line : kPlayPressed) text += line + '\n';
  const std::string all = coloured(text + "track com.apple.Music playing\ntap-transport 3\n");
  EXPECT_NE(all.find("\033[33m0.00 com.apple.springboard -[SpringBoard launchApplication"),
            all.npos)
      << all;
  EXPECT_NE(all.find("\033[36m0.00 com.spotify.client notify_post("), all.npos);
  EXPECT_NE(all.find("\033[2m0.00 com.apple.springboard -[MPUSystem"), all.npos);
}

TEST(Colours, AreInTheShellToo) {
  const auto loader = testedLibrary();
  std::istringstream typed("boot\nundo\nboot\n");
  std::ostringstream shown;
  auto* in = std::cin.rdbuf(typed.rdbuf());
  auto* out = std::cout.rdbuf(shown.rdbuf());
  scenario::RunOptions options;
  options.colour = true;
  scenario::runShell(*loader, options);
  std::cin.rdbuf(in);
  std::cout.rdbuf(out);
  const std::string init = "\033[2m0.00 com.apple.springboard -[SpringBoard init]\033[0m\n";
  const std::size_t first = shown.str().find(init);
  ASSERT_NE(first, std::string::npos) << shown.str();
  EXPECT_NE(shown.str().find(init, first + 1), std::string::npos);
}

TEST(Colours, WithoutThemTheTextIsTheSame) {
  std::string text = coloured(contents(CORVALEN_SOURCE_DIR "/scenarios/press-play.txt"));
  for (std::size_t at = 0; (at = text.find('\033')) != std::string::npos;)
    text.erase(at, text.find('m', at) - at + 1);
  const auto loader = testedLibrary();
  std::ostringstream plain;
  std::ostringstream errors;
  scenario::runScenario("file", contents(CORVALEN_SOURCE_DIR "/scenarios/press-play.txt"), *loader,
                        {}, plain, errors);
  EXPECT_EQ(text, plain.str());
}

// ---- What the shell knows of the language

TEST(Reference, SaysSomethingOfEveryCommandThatThereIs) {
  for (const std::string& name : scenario::commandNames())
    EXPECT_NE(scenario::helpText(name), "") << name;
  EXPECT_EQ(scenario::helpText("fly"), "");
}

TEST(Reference, IsToldWithoutMarks) {
  for (const auto& row : scenario::reference())
    EXPECT_EQ(row.meaning.find_first_of("`["), std::string::npos) << row.meaning;
}

class Completions : public DeviceTest {
 protected:
  std::vector<std::string> after(const std::string& line) {
    return scenario::completions(line, device);
  }
  static bool holds(const std::vector<std::string>& all, const std::string& one) {
    return std::ranges::find(all, one) != all.end();
  }
};

TEST_F(Completions, BeginWithTheCommands) {
  for (const char* name : {"boot", "tap-transport", "expect-nothing", "help", "quit", "undo"})
    EXPECT_TRUE(holds(after(""), name)) << name;
}

TEST_F(Completions, AreAppsWhereACommandTakesOne) {
  device.state.apps.push_back({"a.b", "B"});
  EXPECT_TRUE(holds(after("start "), "a.b"));
  EXPECT_TRUE(holds(after("track "), "none"));
  EXPECT_TRUE(holds(after("track a.b "), "playing"));
  EXPECT_TRUE(holds(after("open a.b "), "suspended"));
  EXPECT_FALSE(holds(after("advance "), "a.b"));
}

TEST_F(Completions, AreTheLabelsOfAPageThatIsOpen) {
  EXPECT_TRUE(after("settings set ").empty());
  booted();
  const auto open = scenario::parseLine("settings open");
  std::get<scenario::Command>(*open).run(device);
  EXPECT_TRUE(holds(after("settings set "), "\"Enabled\""));
  EXPECT_TRUE(holds(after("settings "), "choose"));
  EXPECT_TRUE(holds(after("settings choose \"Preferred Player\" "), "com.apple.Music"));
  EXPECT_TRUE(after("settings set \"Start ").empty());  // a text that is not closed
}

}  // namespace
}  // namespace sim::show
