// The program as it is called: exit statuses, formats, standard input.
#include <gtest/gtest.h>
#include <sys/wait.h>
#include <unistd.h>

#include <array>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <nlohmann/json.hpp>
#include <string>

namespace {

struct Finished {
  int status;
  std::string output;
};

// Runs the simulator with `input` as standard input; both outputs together.
Finished run(const std::string& arguments, const std::string& input = "") {
  const auto file =
      std::filesystem::temp_directory_path() / ("corvalen-input-" + std::to_string(::getpid()));
  std::ofstream(file) << input;
  const std::string command =
      std::string(CORVALEN_SIM) + " " + arguments + " <" + file.string() + " 2>&1";
  FILE* pipe = popen(command.c_str(), "r");
  std::string output;
  std::array<char, 4096> buffer{};
  while (const std::size_t got = fread(buffer.data(), 1, buffer.size(), pipe))
    output.append(buffer.data(), got);
  const int status = pclose(pipe);
  std::filesystem::remove(file);
  return {WEXITSTATUS(status), output};
}

TEST(CommandLine, ReadsStandardInputAndSucceeds) {
  const Finished result = run("run -", "locked yes\nexpect-nothing\n");
  EXPECT_EQ(result.status, 0);
  EXPECT_EQ(result.output, "> locked yes\n");
}

TEST(CommandLine, AFailedExpectationIsStatusOneAndShowsWhatCameInstead) {
  const Finished result =
      run("run -", "boot\nremote 1\nexpect-result NO\nexpect nothing-like-it\n");
  EXPECT_EQ(result.status, 1);
  EXPECT_NE(result.output.find("standard input:3: expected NO\n"), std::string::npos);
  EXPECT_NE(result.output.find("standard input:4: expected nothing-like-it\n"), std::string::npos);
  EXPECT_NE(result.output.find("instead: com.apple.springboard MRMediaRemoteSendCommand(1, nil)"),
            std::string::npos);
}

TEST(CommandLine, FailFastPlaysNoScenarioBehindOneThatFails) {
  const std::string input = "expect nothing-like-it\n";
  EXPECT_EQ(run("run - /missing", input).status, 2);
  EXPECT_EQ(run("run --fail-fast - /missing", input).status, 1);
  EXPECT_EQ(run("run --fail-fast - /missing", "expect-nothing\n").status, 2);
}

TEST(CommandLine, AMistakeIsStatusTwoAndNothingRuns) {
  const Finished result = run("run -", "boot\nfly\n");
  EXPECT_EQ(result.status, 2);
  EXPECT_EQ(result.output, "standard input:2: unknown command fly\n");
}

TEST(CommandLine, WhatCannotBeDoneStopsTheScenarioAfterItsEcho) {
  const Finished result = run("run -", "locked yes\ntap-transport 3\nlocked no\n");
  EXPECT_EQ(result.status, 2);
  EXPECT_NE(result.output.find("> locked yes\n> tap-transport 3\n"), std::string::npos);
  EXPECT_NE(result.output.find("standard input:2: SpringBoard is not running"), std::string::npos);
  EXPECT_EQ(result.output.find("> locked no"), std::string::npos);
}

TEST(CommandLine, PrintsTheSettingsPageThatAScenarioEndsWith) {
  const Finished result = run("page -", "boot\nsettings open\nsettings set \"Enabled\" yes\n");
  EXPECT_EQ(result.status, 0) << result.output;
  const auto page = nlohmann::json::parse(result.output);
  EXPECT_EQ(page["title"], "Corvalen Pro");
  EXPECT_EQ(page["button"], "Help");
  const auto& rows = page["groups"][0]["rows"];
  const nlohmann::json enabled = {{"kind", "switch"},
                                  {"label", "Enabled"},
                                  {"value", true},
                                  {"enabled", true},
                                  {"checked", false}};
  EXPECT_EQ(rows[0], enabled);
  EXPECT_EQ(rows[1]["kind"], "chooser");
  EXPECT_EQ(rows[1]["value"], "None");
  EXPECT_EQ(page["groups"].back()["rows"][0]["kind"], "button");
}

TEST(CommandLine, ThereIsNoPageToPrintWhereNoneIsOpen) {
  const Finished result = run("page -", "boot\n");
  EXPECT_EQ(result.status, 2);
  EXPECT_EQ(result.output, "standard input: the Settings app is not open\n");
}

TEST(CommandLine, ExploringSaysWhatItTriedAndThatNothingWasFound) {
  const Finished result = run("explore --seed 3 --count 4 --jobs 2");
  EXPECT_EQ(result.status, 0) << result.output;
  // Behind lines of progress, where the machine is slow.
  EXPECT_NE(result.output.find("4 scenarios, "), std::string::npos) << result.output;
  EXPECT_NE(result.output.find(" commands, 0 findings, "), std::string::npos) << result.output;
}

TEST(CommandLine, ExploringRefusesNumbersThatAreNone) {
  for (const char* wrong : {"--count 0", "--count -1", "--seed x", "--jobs 0", "--minutes -2",
                            "--image /nonexistent.dylib", "surplus"})
    EXPECT_EQ(run(std::string("explore ") + wrong).status, 2) << wrong;
}

TEST(CommandLine, InjectingNeedsToursThatCanBeReadAndACheckUp) {
  const std::string tours = std::string(CORVALEN_SOURCE_DIR) + "/scenarios/tours/";
  const std::string checkUp = "--check-up " + tours + "check-up.txt ";
  EXPECT_EQ(run("inject " + tours + "ios7.txt").status, 2);
  EXPECT_EQ(run("inject " + checkUp).status, 2);
  EXPECT_EQ(run("inject " + checkUp + "/nonexistent.txt").output,
            "corvalen-sim: /nonexistent.txt: cannot be read\n");
  const Finished wrong = run("inject " + checkUp + "-", "boot\nfly\n");
  EXPECT_EQ(wrong.status, 2);
  EXPECT_EQ(wrong.output, "corvalen-sim: standard input:2: unknown command fly\n");
}

// A check-up that cannot hold is a finding with the fault, the file and the line.
TEST(CommandLine, InjectingNamesTheFaultAndWhatDidNotHold) {
  const auto checkUp =
      std::filesystem::temp_directory_path() / ("corvalen-check-" + std::to_string(::getpid()));
  std::ofstream(checkUp) << "boot\nexpect-nothing\n";
  const Finished result = run("inject --count 1 --check-up " + checkUp.string() + " -", "boot\n");
  std::filesystem::remove(checkUp);
  EXPECT_EQ(result.status, 1);
  EXPECT_NE(result.output.find("standard input: when "), std::string::npos) << result.output;
  EXPECT_NE(result.output.find(checkUp.string() + ":2: expect-nothing"), std::string::npos);
}

TEST(CommandLine, AFileThatCannotBeReadIsStatusTwo) {
  EXPECT_EQ(run("run /nonexistent/story.txt").status, 2);
  EXPECT_EQ(run("run /tmp").status, 2);
}

TEST(CommandLine, AllScenariosRunAndTheWorstStatusWins) {
  const Finished result = run("run /nonexistent - ", "locked yes\n");
  EXPECT_EQ(result.status, 2);
  EXPECT_NE(result.output.find("> locked yes"), std::string::npos);
}

TEST(CommandLine, UnknownOptionsAreStatusTwo) {
  EXPECT_EQ(run("run --fly -").status, 2);
  EXPECT_EQ(run("run --format xml -").status, 2);
  EXPECT_EQ(run("").status, 2);
  EXPECT_EQ(run("--help").status, 0);
}

TEST(CommandLine, AThinImageIsItsOnlySlice) {
  const std::string images = std::string(CORVALEN_SOURCE_DIR) + "/tests/corpus/macho/";
  for (const char* image : {"arm64.dylib", "armv7.dylib", "fat.dylib"}) {
    const Finished result = run("run --image " + images + image + " -", "boot\n");
    EXPECT_EQ(result.status, 0) << image << result.output;
    EXPECT_NE(result.output.find("initWithContentsOfFile:"), std::string::npos) << image;
  }
  const std::string thin = "--image " + images + "armv7.dylib ";
  EXPECT_EQ(run("run " + thin + "--slice armv7 -", "boot\n").status, 0);
  EXPECT_EQ(run("run " + thin + "--slice arm64 -", "boot\n").status, 2);
  const Finished none = run("run --image " + images + "../settings/full.xml -", "boot\n");
  EXPECT_EQ(none.status, 2);
  EXPECT_EQ(none.output, "corvalen-sim: the file has no slice for arm64 or armv7\n");
}

TEST(CommandLine, AnUnknownClassIsFoundBeforeAnythingRuns) {
  const Finished result = run("run -", "boot\nno-class SBNonsense\n");
  EXPECT_EQ(result.status, 2);
  EXPECT_EQ(result.output, "standard input:2: no-class: no class SBNonsense is known\n");
}

TEST(CommandLine, JsonHasOneObjectALine) {
  const Finished result = run("run --format json -", "boot\nremote 1\n");
  EXPECT_NE(result.output.find("{\"command\": \"remote 1\"}\n"
                               "{\"time\": 0.00, \"process\": \"com.apple.springboard\", \"call\": "
                               "\"MRMediaRemoteSendCommand(1, nil)\"}\n{\"result\": \"YES\"}\n"),
            std::string::npos)
      << result.output;
}

TEST(CommandLine, AllCallsShowsMessagesToo) {
  const Finished result = run("run --calls all -", "boot\n");
  EXPECT_NE(result.output.find("objc_getClass(\"SBIconController\")"), std::string::npos);
  EXPECT_NE(result.output.find("-[NSBundle bundleIdentifier]"), std::string::npos);
}

TEST(CommandLine, TheShellReportsMistakesAndGoesOn) {
  const Finished result = run("shell", "fly\nwatch 1\nboot\nremote 1\nexpect-result YES\n");
  EXPECT_EQ(result.status, 0);
  EXPECT_NE(result.output.find("unknown command fly"), std::string::npos);
  EXPECT_NE(result.output.find("com.garmin.connect.mobile has no running process"),
            std::string::npos);
  EXPECT_NE(result.output.find("= YES\nholds\n"), std::string::npos);
}

TEST(CommandLine, TheShellHelpsTakesBackAndQuits) {
  const Finished result =
      run("shell", "help press\nhelp fly\nundo\nboot\nlocked yes\nundo\ntap-title\nquit\nfly\n");
  EXPECT_EQ(result.status, 0);
  EXPECT_NE(result.output.find("press N\n    button N of the alert"), std::string::npos);
  EXPECT_NE(result.output.find("unknown command fly\nthere is nothing to undo\n"),
            std::string::npos);
  EXPECT_NE(result.output.find("undone: locked yes\n> tap-title\n"), std::string::npos);
  EXPECT_TRUE(
      result.output.ends_with("mediaControlsTitlesViewWasTapped:<MPUMediaControlsTitlesView>]\n"));
}

TEST(CommandLine, LanesAndPagesFailAsTheTraceDoes) {
  for (const char* way : {"--lanes", "--format html"}) {
    const std::string command = std::string("run ") + way + " -";
    EXPECT_EQ(run(command, "boot\n").status, 0) << way;
    EXPECT_EQ(run(command, "boot\nexpect-nothing\n").status, 1) << way;
    EXPECT_EQ(run(command, "fly\n").status, 2) << way;
    EXPECT_EQ(run(command, "watch 1\n").status, 2) << way;
  }
}

TEST(CommandLine, TheDevicePlaysForAnotherProgram) {
  const Finished result = run("device",
                              "{\"play\": 1, \"lines\": [\"boot\"]}\nnonsense\n"
                              "{\"play\": 2, \"lines\": [\"boot\", \"fly\"]}\n");
  EXPECT_EQ(result.status, 0);
  EXPECT_NE(result.output.find("{\"play\":1,\"from\":0}\n{\"play\":1,\"step\":0,"),
            std::string::npos);
  EXPECT_NE(result.output.find("{\"play\":1,\"done\":true}\n{\"error\":"), std::string::npos);
  EXPECT_NE(result.output.find("\"wrong\":{\"line\":1,\"message\":\"unknown command fly\"}}"),
            std::string::npos);
}

}  // namespace
