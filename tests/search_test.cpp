// The searches themselves: that every invariant can be broken, that what breaks one is found and
// made short, and that nothing a child process does ends a search.
#include <unistd.h>

#include <csignal>
#include <sstream>

#include "sim/explore/explorer.hpp"
#include "sim/explore/playback.hpp"
#include "sim/inject/injector.hpp"
#include "sim/platform/device_actions.hpp"
#include "sim/search/child.hpp"
#include "sim/search/shrink.hpp"
#include "tests/device_fixture.hpp"

namespace sim {
namespace {

using explore::Invariants;
using search::Lines;
namespace rule = explore::rule;

// ---- Every invariant can be broken

class BrokenInvariant : public ::testing::Test {
 protected:
  BrokenInvariant()
      : loader_(hostLibrary()),
        output_(trace_, scenario::Format::Text),
        session_(loader_, output_, false),
        invariants_(session_) {
    play({R"(app com.spotify.client "Spotify")", "prefs iea9AQXrEmhSZ4u yes",
          R"(prefs 2I8UQMOAwU5nnNZt "com.spotify.client")", "boot"});
  }
  ~BrokenInvariant() override { session_.device().injection = nullptr; }

  // The rule that was broken first, or "none".
  std::string play(const Lines& lines) {
    for (const std::string& line : lines) {
      session_.run(std::get<scenario::Command>(*scenario::parseLine(line)));
      if (const auto violation = invariants_.check(line)) return violation->rule;
    }
    return "none";
  }
  // Something that no command does, as part of one.
  std::string doing(const std::function<void(Process&)>& work) {
    session_.run({"advance 0", [&](Device& device) -> std::optional<bool> {
                    Process& board = *device.springBoard();
                    device.callback(board, [&] { work(board); });
                    return std::nullopt;
                  }});
    const auto violation = invariants_.check("advance 0");
    return violation ? violation->rule : "none";
  }
  void inject(Injection& injection) { session_.device().injection = &injection; }
  void fail(const std::string& call) {
    failing_.emplace(std::vector<inject::InjectedFault>{{inject::FaultKind::Nothing, call, 0}});
    inject(*failing_);
  }
  Process& board() { return *session_.device().springBoard(); }

 private:
  std::ostringstream trace_;
  HostLibraryLoader loader_;
  scenario::Output output_;
  scenario::Session session_;
  Invariants invariants_;
  std::optional<inject::Injector> failing_;
};

// Answers one call in its own way.
class Answering final : public Injection {
 public:
  Answering(std::string name, Value answer) : name_(std::move(name)), answer_(answer) {}
  std::optional<Value> instead(const NativeCode&, Invocation& call) override {
    return call.name == name_ ? std::optional(answer_) : std::nullopt;
  }

 private:
  std::string name_;
  Value answer_;
};

TEST_F(BrokenInvariant, NoneByOrdinaryUse) {
  EXPECT_EQ(play({"unlock", "tap-transport 3", "advance 5", "announce", "press 0", "unlock"}),
            "none");
}

TEST_F(BrokenInvariant, ByACrash) {
  EXPECT_EQ(doing([](Process&) { throw Fault("planted"); }), rule::kNoCrash);
}

TEST_F(BrokenInvariant, ByALostReference) {
  EXPECT_EQ(doing([](Process& process) {
              const auto lost = makeString(process, "lost");
              process.kept.emplace_back(lost.get());
              lost->libraryRetain();
            }),
            rule::kNoLeak);
}

TEST_F(BrokenInvariant, ByTwoTimersInSpringBoard) {
  EXPECT_EQ(doing([](Process& process) { process.timers = {1001, 1002}; }), rule::kFewTimers);
}

TEST_F(BrokenInvariant, ByAnUnknownNotification) {
  EXPECT_EQ(doing([](Process& process) {
              process.device.effect(process, R"(notify_post("VNutj2BhJMTGTwVk"))");
            }),
            rule::kKnownPosts);
}

TEST_F(BrokenInvariant, ByAnUnknownCommandLine) {
  EXPECT_EQ(doing([](Process& process) { process.device.effect(process, R"(system("reboot"))"); }),
            rule::kKnownCommandLines);
}

TEST_F(BrokenInvariant, ByTheLaunchOfAnAppThatIsNotListed) {
  Answering everythingListed("containsObject:", Value::boolean(true));
  inject(everythingListed);
  EXPECT_EQ(play({"unlist com.spotify.client", "tap-transport 3"}), rule::kOnlyListedApps);
}

TEST_F(BrokenInvariant, ByACallThatIsPassedOnTwice) {
  EXPECT_EQ(doing([](Process&) {}), "none");
  class Twice final : public Injection {
   public:
    std::optional<Value> instead(const NativeCode&, Invocation& call) override {
      if (call.name == "_launchIcon:")
        call.process.device.effect(call.process,
                                   "-[SBIconController _launchIcon:<SBApplicationIcon>]");
      return std::nullopt;
    }
  } twice;
  inject(twice);
  EXPECT_EQ(play({"tap-icon com.apple.Music"}), rule::kPassedOnOnce);
}

TEST_F(BrokenInvariant, ByACallThatIsTakenOverAndPassedOn) {
  class PassingOn final : public Injection {
   public:
    std::optional<Value> instead(const NativeCode&, Invocation& call) override {
      if (call.name == "launchApplicationWithIdentifier:suspended:")
        call.process.device.effect(call.process,
                                   "-[MPUSystemMediaControlsViewController transportControlsView:"
                                   "<MPUTransportControlsView> tapOnControlType:3]");
      return std::nullopt;
    }
  } passingOn;
  inject(passingOn);
  EXPECT_EQ(play({"tap-transport 3"}), rule::kPassedOnOnce);
}

TEST_F(BrokenInvariant, ByAnAnswerThatTheCommandDidNotGet) {
  Answering no("MRMediaRemoteSendCommand", Value::boolean(false));
  inject(no);
  EXPECT_EQ(play({"remote 1"}), rule::kAnswered);
}

TEST_F(BrokenInvariant, ByASecondGreeting) {
  Answering notWritten("writeToFile:atomically:", Value::boolean(false));
  inject(notWritten);
  EXPECT_EQ(play({"unlock", "boot", "unlock"}), rule::kOneGreeting);
}

TEST_F(BrokenInvariant, ByALostSetting) {
  fail(
      "-[NSMutableDictionary initWithContentsOfFile:"
      "\"/var/mobile/Library/Preferences/com.qvethmar.corvalenpro.plist\"]");
  EXPECT_EQ(play({"announce"}), rule::kSettingsKept);
}

// ---- Finding and shrinking

TEST(Shrinking, LeavesWhatIsNeeded) {
  const Lines lines = {"a", "b", "c", "d", "e", "f", "g", "h"};
  const auto fails = [](const Lines& some) {
    return std::ranges::count(some, "b") > 0 && std::ranges::count(some, "g") > 0;
  };
  EXPECT_EQ(search::shrunk(lines, fails), (Lines{"b", "g"}));
}

TEST(Shrinking, LeavesOutPairsThatNeedEachOther) {
  // Fails if both of "open" and "close" are there, or neither.
  const auto fails = [](const Lines& some) {
    return std::ranges::count(some, "x") > 0 &&
           std::ranges::count(some, "open") == std::ranges::count(some, "close");
  };
  EXPECT_EQ(search::shrunk({"open", "x", "close"}, fails), (Lines{"x"}));
}

std::unique_ptr<LibraryLoader> hostLoader() {
  return std::make_unique<HostLibraryLoader>(hostLibrary());
}

TEST(Drawing, GivesTheSameScenarioForTheSameSeed) {
  Lines first;
  Lines second;
  const auto loader = hostLoader();
  const auto one = explore::drawAndPlay(*loader, 7, first);
  const auto two = explore::drawAndPlay(*loader, 7, second);
  EXPECT_EQ(first, second);
  EXPECT_EQ(one.trace, two.trace);
}

TEST(Drawing, GivesValidScenariosWithTheTraceThatRunningThemGives) {
  const auto loader = hostLoader();
  for (std::uint64_t seed = 1; seed < 40; ++seed) {
    Lines lines;
    const auto drawn = explore::drawAndPlay(*loader, seed, lines);
    std::ostringstream trace;
    std::ostringstream errors;
    const auto status = scenario::runScenario("drawn", explore::joined(lines), *loader,
                                              {scenario::Format::Text, false, true}, trace, errors);
    EXPECT_EQ(status, scenario::Status::Held) << errors.str();
    EXPECT_EQ(trace.str(), drawn.trace);
  }
}

// Found by a search: the SpringBoard whose neighbour hooked after us made way for one whose
// neighbour hooked before us, in the middle of a tap that was taken over.
TEST(Exploring, DoesNotJudgeACallByTheProcessThatCameAfterIt) {
  const auto loader = hostLoader();
  const Lines lines = {
      R"(app com.apple.podcasts "Podcasts")",
      "version 1145.14",
      "neighbour after",
      "prefs iea9AQXrEmhSZ4u yes",
      R"(prefs 2I8UQMOAwU5nnNZt "com.apple.podcasts")",
      "prefs KwI68FtaZGgSizb yes",
      "boot",
      "neighbour before",
      R"(during _applyMutableSettings:withTransitionContext:completion: "boot")",
      "tap-transport 4",
  };
  const auto playback = explore::play(*loader, lines);
  EXPECT_FALSE(playback.violation) << playback.violation->what;
}

// A build that differs from the others: it never hears of a version.
class DeafLoader final : public LibraryLoader {
 public:
  DeafLoader() { bundle = loader_.bundle; }
  std::unique_ptr<Library> load(Process& process) override {
    loader_.setVersion(1145.15);
    return loader_.load(process);
  }
  void setVersion(double) override {}

 private:
  HostLibraryLoader loader_{hostLibrary()};
};

TEST(Exploring, ShrinksAScenarioThatRunsDifferentlyOnTwoBuilds) {
  const std::vector<explore::Build> builds = {
      {"host", hostLoader}, {"deaf", [] { return std::make_unique<DeafLoader>(); }}};
  std::ostringstream found;
  std::ostringstream progress;
  search::SearchOptions options;
  options.count = 10;
  ASSERT_GT(explore::explore(builds, options, {}, found, progress), 0u);
  // What is left is a version and the start of a process. (With methods of one version alone it may
  // end by a message of another one before it differs: other findings.)
  const Lines lines = explore::split(found.str());
  const auto differs = std::ranges::find_if(
      lines, [](const std::string& line) { return line.find("deaf differs") != line.npos; });
  ASSERT_GE(lines.end() - differs, 3) << found.str();
  EXPECT_TRUE(differs[1].starts_with("version ")) << found.str();
  EXPECT_EQ(differs[2], "boot") << found.str();
  EXPECT_NE(progress.str().find("findings"), std::string::npos);
}

// A program that misspells a command in its trace, and speaks of all that it cannot play.
TEST(Exploring, ShrinksToWhatCanBePlayed) {
  const std::string program = ::testing::TempDir() + "misspelling";
  std::ofstream(program) << "#!/bin/sh\n" CORVALEN_SIM
                            R"( run "$1" 2>&1 | sed 's/^> unlock/> unlcok/')";
  std::filesystem::permissions(program, std::filesystem::perms::owner_all);
  const std::vector<explore::Build> builds = {{"host", hostLoader}, {"misspelling", {}, program}};
  std::ostringstream found;
  std::ostringstream progress;
  search::SearchOptions options;
  options.count = 3;
  ASSERT_GT(explore::explore(builds, options, {}, found, progress), 0u);
  std::istringstream in(found.str());
  Lines shortest;
  for (std::string line; std::getline(in, line) && !line.empty();)
    if (line[0] != '#') shortest.push_back(line);
  EXPECT_EQ(explore::play(*hostLoader(), shortest).line, shortest.size()) << found.str();
  EXPECT_EQ(shortest.back(), "unlock");
}

TEST(Exploring, FindsAProgramThatPrintsAnotherTrace) {
  const std::vector<explore::Build> builds = {{"host", hostLoader}, {"echo", {}, "echo"}};
  std::ostringstream found;
  std::ostringstream progress;
  search::SearchOptions options;
  options.count = 1;
  EXPECT_EQ(explore::explore(builds, options, {}, found, progress), 1u);
  EXPECT_NE(found.str().find("echo differs"), std::string::npos) << found.str();
}

// ---- Children

TEST(Child, TellsWhatItDidAndHowItDied) {
  const auto outcome = search::isolated([](const search::Tell& tell) {
    tell("one");
    tell("two\nlines");
    raise(SIGKILL);
  });
  EXPECT_EQ(outcome.messages, (Lines{"one", "two\nlines"}));
  EXPECT_EQ(outcome.death, "signal 9");
}

TEST(Child, ThatHangsDies) {
  const auto outcome = search::isolated([](const search::Tell&) {
    search::expectEndWithin(1);
    for (;;) pause();
  });
  EXPECT_EQ(outcome.death, "signal 14");
}

TEST(Child, ThatEndsWellHasNoDeath) {
  EXPECT_EQ(search::isolated([](const search::Tell&) {}).death, "");
}

TEST(Search, GoesOnBehindAPieceThatEndsItsJob) {
  search::Search search;
  search.pieces = "pieces";
  search.prepare = [] {
    return [](std::uint64_t number) -> search::Examined {
      if (number == 3) raise(SIGKILL);
      return {std::nullopt, 1};
    };
  };
  search.died = [](std::uint64_t number, const std::string& how) {
    return std::to_string(number) + " by " + how;
  };
  search::SearchOptions options;
  options.count = 6;
  options.jobs = 2;
  std::ostringstream found;
  std::ostringstream progress;
  EXPECT_EQ(search::run(search, options, found, progress), 1u);
  EXPECT_EQ(found.str(), "3 by signal 9\n");
  EXPECT_TRUE(progress.str().starts_with("6 pieces, 5 commands, 1 findings")) << progress.str();
}

}  // namespace
}  // namespace sim
