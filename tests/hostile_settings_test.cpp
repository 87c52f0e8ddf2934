// Settings files that nobody should have: the library that is tested does with each just what the
// host build does, and nothing that must always hold is broken.
#include "sim/explore/hostile_settings.hpp"

#include <filesystem>
#include <fstream>

#include "tests/device_fixture.hpp"

namespace sim {
namespace {

std::vector<std::string> corpus() {
  std::vector<std::string> files;
  for (const auto& entry :
       std::filesystem::directory_iterator(CORVALEN_SOURCE_DIR "/tests/corpus/settings")) {
    std::ifstream file(entry.path(), std::ios::binary);
    files.emplace_back(std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>());
  }
  std::ranges::sort(files);  // folders have no order
  return files;
}

// Whatever the file was, after a reset the page can set everything.
bool isSavedAfterReset(const std::string& trace) {
  const auto chosen = trace.find(R"(> settings choose "Preferred Player" com.spotify.client)");
  const auto saved = trace.find(R"(com.apple.Preferences notify_post("bfaK8ayWXeXMQum"))", chosen);
  return chosen != std::string::npos && saved < trace.find("> settings close", chosen);
}

class HostileSettings : public ::testing::Test {
 protected:
  void play(const std::string& settings) {
    const auto lines = explore::scenarioOn(settings);
    const auto playback = explore::play(*tested_, lines, explore::OutOfPlace::LeftOut);
    EXPECT_FALSE(playback.violation) << playback.violation->what << "\n" << playback.trace;
    EXPECT_EQ(playback.line, lines.size());
    EXPECT_TRUE(isSavedAfterReset(playback.trace)) << playback.trace;
    EXPECT_EQ(explore::play(host_, lines, explore::OutOfPlace::LeftOut).trace, playback.trace);
  }

 private:
  std::unique_ptr<LibraryLoader> tested_ = testedLibrary();
  HostLibraryLoader host_{hostLibrary()};
};

TEST_F(HostileSettings, OfTheCorpusBreakNothing) {
  const auto files = corpus();
  ASSERT_GE(files.size(), 18u);
  for (const std::string& settings : files) play(settings);
}

TEST_F(HostileSettings, AnEmptyFileBreaksNothing) { play(""); }

TEST_F(HostileSettings, DrawnFromTheCorpusBreakNothing) {
  search::Random random(1);
  const auto files = corpus();
  for (int i = 0; i < 60; ++i) play(explore::mutatedSettings(random.of(files), random));
}

TEST_F(HostileSettings, AreDrawnDifferentlyEachTime) {
  search::Random random(1);
  const std::string file = corpus().front();
  EXPECT_NE(explore::mutatedSettings(file, random), explore::mutatedSettings(file, random));
}

}  // namespace
}  // namespace sim
