// The scenario language: words, mistakes and patterns.
#include <gtest/gtest.h>

#include "sim/scenario/output.hpp"
#include "sim/scenario/script.hpp"
#include "sim/scenario/words.hpp"

namespace sim::scenario {
namespace {

std::string mistake(const std::string& text) {
  try {
    parseScript("story.txt", text);
  } catch (const ScenarioError& error) {
    return error.what();
  }
  return "none";
}

TEST(Words, QuotesHoldBlanksAndEscapes) {
  const auto words = splitWords(R"(app  a.b "My \"App\" \\ \n" # comment)");
  ASSERT_EQ(words.size(), 3u);
  EXPECT_EQ(words[2].text, "My \"App\" \\ \n");
  EXPECT_TRUE(words[2].quoted);
  EXPECT_FALSE(words[1].quoted);
}

TEST(Words, ACommentMayFollowAWordAtOnce) {
  EXPECT_EQ(splitWords("boot# now").size(), 1u);
  EXPECT_EQ(withoutComment("  boot   # now"), "boot");
  EXPECT_EQ(withoutComment(R"(post "a # b" # c)"), R"(post "a # b")");
}

TEST(Mistakes, NameFileLineAndCause) {
  EXPECT_EQ(mistake("boot\nfly"), "story.txt:2: unknown command fly");
  EXPECT_EQ(mistake("advance"), "story.txt:1: advance: a time in seconds is missing");
  EXPECT_EQ(mistake("boot now"), "story.txt:1: boot: surplus argument now");
  EXPECT_EQ(mistake("press 1.5"), "story.txt:1: press: a button must be a whole number, not 1.5");
  EXPECT_EQ(mistake("app a.b Name"), "story.txt:1: app: the name must be quoted: Name");
  EXPECT_EQ(mistake("post \"a"), "story.txt:1: unclosed quote");
  EXPECT_EQ(mistake(R"(post "a\t")"), "story.txt:1: unknown escape \\t");
  EXPECT_EQ(mistake("locked maybe"), "story.txt:1: locked: yes or no expected, not maybe");
  EXPECT_EQ(mistake("start \"a.b\""),
            "story.txt:1: start: a bundle identifier is not quoted, but \"a.b\" is");
}

TEST(Mistakes, NumbersKeepTheirRange) {
  EXPECT_EQ(mistake("remote 4294967295"), "none");
  EXPECT_NE(mistake("remote 4294967296"), "none");
  EXPECT_NE(mistake("remote -1"), "none");
  EXPECT_EQ(mistake("prefs key -5"), "none");
  EXPECT_NE(mistake("prefs key 5x"), "none");
  EXPECT_NE(mistake("advance -1"), "none");
  EXPECT_NE(mistake("advance nan"), "none");
  EXPECT_EQ(mistake("network 0x40002"), "none");
  EXPECT_NE(mistake("network 0xzz"), "none");
  EXPECT_NE(mistake("prefs-file hex abc"), "none");
  EXPECT_NE(mistake("player com.example.notes after 1"), "none");
}

TEST(Mistakes, AFileInHexadecimalDigitsHasAtLeastOneByte) {
  EXPECT_EQ(mistake("prefs-file hex"),
            "story.txt:1: prefs-file: a byte in hexadecimal digits is missing");
  EXPECT_EQ(mistake("prefs-file hex # 00"), mistake("prefs-file hex"));
  EXPECT_NE(mistake("prefs-file"), "none");
  EXPECT_EQ(mistake("prefs-file \"\""), "none");
  EXPECT_EQ(mistake("prefs-file hex 00"), "none");
}

// However late in the scenario: it is read before anything runs.
TEST(Mistakes, AClassThatIsLackingIsOneThatThePlatformHas) {
  EXPECT_EQ(mistake("boot\nno-class SBNonsense"),
            "story.txt:2: no-class: no class SBNonsense is known");
  EXPECT_NE(mistake("no-class _ShownAlerts"), "none");
  EXPECT_EQ(mistake("no-class SBIconController"), "none");
  EXPECT_EQ(mistake("no-class ALApplicationList"), "none");
}

TEST(Mistakes, WhatThePlatformDoesNotKnowIsFoundBeforeAnythingRuns) {
  EXPECT_EQ(mistake("no-method SBNothing init"),
            "story.txt:1: no-method: no class SBNothing is known");
  EXPECT_EQ(mistake("no-method _SBTitleViews init"),
            "story.txt:1: no-method: no class _SBTitleViews is known");
  EXPECT_EQ(mistake("no-method SBApplication"), "story.txt:1: no-method: a selector is missing");
  EXPECT_EQ(mistake("no-method SBApplication anything:"), "none");
  EXPECT_EQ(mistake("framework Foundation late"),
            "story.txt:1: framework: no framework Foundation is known");
  EXPECT_EQ(mistake("framework UIKit gone"),
            "story.txt:1: framework: loaded or late or missing expected, not gone");
  EXPECT_EQ(mistake("selectors some"),
            "story.txt:1: selectors: every or of-version expected, not some");
  EXPECT_EQ(mistake("daemon"), "story.txt:1: daemon: a name is missing");
}

TEST(Mistakes, ExpectationsAreCheckedToo) {
  EXPECT_NE(mistake("expect"), "none");
  EXPECT_NE(mistake("expect-count many x"), "none");
  EXPECT_NE(mistake("expect-result MAYBE"), "none");
  EXPECT_NE(mistake("expect-nothing at all"), "none");
  EXPECT_NE(mistake("expect-something x"), "none");
}

TEST(Expectations, ACallIsTheRestOfTheLine) {
  const Script script = parseScript("s", "expect  notify_post(\"a # b\")  ");
  EXPECT_EQ(std::get<Expectation>(script.lines[0].content).call, "notify_post(\"a # b\")");
}

TEST(Patterns, AStarStandsForAnyRun) {
  EXPECT_TRUE(matches("a*c", "abbc"));
  EXPECT_TRUE(matches("a*c", "ac"));
  EXPECT_TRUE(matches("*", ""));
  EXPECT_TRUE(matches("a*b*c", "a1b2b3c"));
  EXPECT_FALSE(matches("a*c", "abcd"));
  EXPECT_FALSE(matches("abc", "ab"));
}

TEST(Times, AreRoundedToTheNearestHundredthHalvesUp) {
  EXPECT_EQ(shownTime(0), "0.00");
  EXPECT_EQ(shownTime(4'999), "0.00");
  EXPECT_EQ(shownTime(5'000), "0.01");
  EXPECT_EQ(shownTime(36'360'000), "36.36");
  EXPECT_EQ(shownTime(1'995'000), "2.00");
}

}  // namespace
}  // namespace sim::scenario
