// What a process gets that is not the first: the restored machine of one that has ended.
#include <fstream>
#include <sstream>

#include "sim/guest/machine.hpp"
#include "sim/guest/macho_file.hpp"
#include "sim/scenario/runner.hpp"
#include "tests/device_fixture.hpp"

namespace sim::guest {
namespace {

std::string contents(const std::string& file) {
  std::ifstream in(file, std::ios::binary);
  return {std::istreambuf_iterator<char>(in), {}};
}

class MachineTest : public ::testing::Test {
 protected:
  void SetUp() override {
    file_ = std::getenv("CORVALEN_IMAGE");
    if (!file_) GTEST_SKIP() << "runs where a device binary is tested";
    const char* slice = std::getenv("CORVALEN_SLICE");
    slice_ = slice && std::string(slice) == "armv7" ? Slice::armv7 : Slice::arm64;
    const std::string bytes = contents(file_);
    image_ = loadMachO({bytes.begin(), bytes.end()}, slice_);
  }

  // Everything that a process could tell two machines apart by.
  void expectSame(const Machine& one, const Machine& other) {
    ASSERT_EQ(one.memory.regions().size(), other.memory.regions().size());
    for (std::size_t i = 0; i < one.memory.regions().size(); ++i) {
      const auto& mine = *one.memory.regions()[i];
      const auto& theirs = *other.memory.regions()[i];
      EXPECT_EQ(mine.base, theirs.base);
      ASSERT_EQ(mine.size, theirs.size);
      EXPECT_EQ(std::memcmp(mine.host, theirs.host, mine.size), 0) << "at " << mine.base;
    }
    EXPECT_EQ(one.memory.blocks(), other.memory.blocks());
    EXPECT_EQ(one.traps.count(), other.traps.count());
    for (unsigned i = 0; i < (slice_ == Slice::arm64 ? 29 : 13); ++i)
      EXPECT_EQ(one.cpu.integer(i), other.cpu.integer(i)) << "register " << i;
    for (unsigned i = 0; i < 32; ++i) EXPECT_EQ(one.cpu.real(i), other.cpu.real(i)) << "d" << i;
    EXPECT_EQ(one.cpu.stackPointer(), other.cpu.stackPointer());
    EXPECT_EQ(one.cpu.linkRegister(), other.cpu.linkRegister());
  }

  std::string playFile(GuestLibraryLoader& loader, const std::string& scenario) {
    const std::string text = contents(CORVALEN_SOURCE_DIR "/scenarios/" + scenario);
    EXPECT_FALSE(text.empty()) << scenario;
    return play(loader, text);
  }
  std::string play(GuestLibraryLoader& loader, const std::string& text) {
    std::ostringstream out;
    std::ostringstream errors;
    scenario::RunOptions options;
    options.allCalls = true;
    EXPECT_EQ(scenario::runScenario("tour", text, loader, options, out, errors),
              scenario::Status::Held);
    return out.str();
  }

  const char* file_ = nullptr;
  Slice slice_ = Slice::arm64;
  MachOImage image_;
};

TEST_F(MachineTest, RestoredIsWhatANewOneIs) {
  GuestLibraryLoader loader(file_, slice_);
  for (const char* tour : {"tours/ios7.txt", "tours/ios8.txt", "tours/ios9.txt"})
    playFile(loader, tour);
  const Machine fresh(image_, slice_);
  ASSERT_GT(loader.idle().size(), 3u);
  for (const auto& machine : loader.idle()) expectSame(*machine, fresh);
}

TEST_F(MachineTest, RestoringForgetsWhatWasWritten) {
  Machine machine(image_, slice_);
  const Address block = machine.memory.allocate(64);
  machine.memory.write(block, "used", 4);
  for (const auto* region : machine.image.regions())
    if (!region->executable) machine.memory.patch(region->base + region->size - 4, "used", 4);
  machine.image.setVersion(847.2);
  machine.traps.exposed(std::make_shared<NativeCode>(), false);
  machine.cpu.setInteger(3, 7);
  machine.cpu.setReal(9, 7);
  machine.cpu.setStackPointer(machine.cpu.stackPointer() - 64);
  machine.memory.write(machine.cpu.stackPointer(), "used", 4);
  machine.restore();
  expectSame(machine, Machine(image_, slice_));
}

TEST_F(MachineTest, TracesAreThoseOfNewOnes) {
  for (const char* tour : {"tours/mean.txt", "tours/settings.txt", "tours/ios9.txt"}) {
    GuestLibraryLoader loader(file_, slice_);
    GuestLibraryLoader fresh(file_, slice_);
    fresh.reuse(false);
    const std::string first = playFile(loader, tour);
    EXPECT_EQ(first, playFile(loader, tour));
    EXPECT_EQ(first, playFile(fresh, tour));
    EXPECT_TRUE(fresh.idle().empty());
  }
}

TEST_F(MachineTest, OneInWhichAProcessCrashedIsNotUsedAgain) {
  GuestLibraryLoader loader(file_, slice_);
  const std::string boot = R"(prefs iea9AQXrEmhSZ4u yes
prefs 2I8UQMOAwU5nnNZt "com.apple.Music"
boot
)";
  testing::internal::CaptureStderr();
  const std::string trace =
      play(loader, "no-method SBMediaController hasTrack\n" + boot + "tap-transport 3\n");
  testing::internal::GetCapturedStderr();
  EXPECT_NE(trace.find("unrecognized selector"), std::string::npos) << trace;
  EXPECT_TRUE(loader.idle().empty());
  play(loader, boot);
  EXPECT_EQ(loader.idle().size(), 1u);
}

}  // namespace
}  // namespace sim::guest
