#include "sim/guest/bench.hpp"

#include <fmt/format.h>

#include <sstream>

#include "sim/guest/guest_library.hpp"
#include "sim/scenario/runner.hpp"

namespace sim::guest {

namespace {

using scenario::Format;
using scenario::Output;
using scenario::Session;

// One event whose cost is of interest, after some commands that set the device up.
struct Path {
  const char* hook;
  const char* path;
  const char* setUp;
  const char* event;
};

const std::string kChosen =
    "app com.spotify.client \"Spotify\"\nprefs iea9AQXrEmhSZ4u yes\n"
    "prefs 2I8UQMOAwU5nnNZt \"com.spotify.client\"\nprefs feo63OPBmERAd2000UpdRdCAND yes\n";

constexpr Path kPaths[] = {
    {"transportControlsView:tapOnControlType:", "pass", "boot", "tap-transport 5"},
    {"transportControlsView:tapOnControlType:", "redirect", "boot", "tap-transport 3"},
    {"mediaControlsTitlesViewWasTapped:", "pass", "boot", "tap-title"},
    {"mediaControlsTitlesViewWasTapped:", "redirect",
     "track com.apple.Music paused\nprefs RjNkaiHs98230Xx \"com.spotify.client\"\nboot",
     "tap-title"},
    {"_launchIcon:", "pass", "boot", "tap-icon com.apple.Music"},
    {"_launchIcon:", "redirect", "running com.spotify.client yes\nboot",
     "tap-icon com.spotify.client"},
    {"launchApplicationWithIdentifier:suspended:", "pass", "boot",
     "open com.apple.Music suspended"},
    {"launchApplicationWithIdentifier:suspended:", "redirect",
     "running com.spotify.client yes\nboot", "open com.spotify.client foreground"},
    {"setNowPlayingInfo:", "pass", "boot", "now-playing yes"},
    {"finishUIUnlockFromSource:", "pass", "boot", "unlock"},
    {"finishUIUnlockFromSource:", "redirect", "locked yes\nboot\nremote 0", "unlock"},
    {"setPasscodeLockVisible:animated:completion:", "pass", "boot", "passcode yes yes no"},
    {"setPasscodeLockVisible:animated:completion:", "redirect", "boot", "passcode no yes no"},
    {"_handleDisplayTurnedOff", "pass", "boot", "display-off"},
    {"touchesShouldCancelInContentView:", "pass", "boot", "drag-lock-screen"},
    {"_quitAppAtIndex:", "pass", "version 847.24\nboot", "quit-card com.apple.Music"},
    {"removeDisplayItem:", "pass", "boot", "quit-card com.apple.Music"},
    {"removeDisplayItem:", "redirect", "prefs RjNkaiHs98230Xx \"com.spotify.client\"\nboot",
     "quit-card com.spotify.client"},
    {"remove:", "pass", "version 1240.1\nboot", "quit-card com.apple.Music"},
    {"initWithMediaControlsStyle:", "pass", "boot", "title-view new a"},
    {"dealloc", "pass", "boot\ntitle-view new a", "title-view free a"},
    {"updateNowPlayingAppDisplayName:", "pass", "prefs iea9AQXrEmhSZ4u no\nboot\ntitle-view new a",
     "title-view show a \"Music\""},
    {"updateNowPlayingAppDisplayName:", "redirect", "boot\ntitle-view new a",
     "title-view show a \"Music\""},
    {"processDidLaunch:", "pass", "boot", "process-launched com.apple.Music"},
    {"processDidLaunch:", "redirect", "prefs KwI68FtaZGgSizb yes\nboot",
     "process-launched com.spotify.client"},
    {"action_OpenApp", "pass", "addon Acapella\nboot", "widget Acapella"},
    {"activateApplicationWithDisplayIdentifier:fromCell:", "pass", "addon Auxo\nboot",
     "widget Auxo com.apple.Music cell"},
    {"openNowPlayingApp", "pass", "addon MiniPlayer\nboot", "widget MiniPlayer"},
    {"MRMediaRemoteSendCommand in SpringBoard", "pass", "boot", "remote 1"},
    {"MRMediaRemoteSendCommand in SpringBoard", "redirect", "boot", "remote 0"},
    {"MRMediaRemoteSendCommand in an app", "pass",
     "app com.example.notes \"Notes\"\nstart com.example.notes", "remote 1 in com.example.notes"},
    {"MRMediaRemoteSendCommand in an app", "redirect",
     "app com.example.notes \"Notes\"\nstart com.example.notes", "remote 0 in com.example.notes"},
    {"didReceiveCommand:", "pass",
     "app com.garmin.connect.mobile \"Garmin\"\nstart com.garmin.connect.mobile", "watch 3"},
    {"didReceiveCommand:", "redirect",
     "app com.garmin.connect.mobile \"Garmin\"\nstart com.garmin.connect.mobile", "watch 0"},
};

void type(Session& session, const std::string& lines) {
  std::istringstream in(lines);
  for (std::string line; std::getline(in, line);)
    if (const auto content = scenario::parseLine(line))
      session.run(std::get<scenario::Command>(*content));
}

constexpr const char* kVersions[] = {"847.2", "1141.14", "1240.1"};
constexpr const char* kApp = "com.example.notes";

const char* nameOf(Slice slice) { return slice == Slice::arm64 ? "arm64" : "armv7"; }

struct Load {
  Cost cost;
  HookRows rows;
};

Load load(const std::filesystem::path& image, Slice slice, const std::string& identifier,
          const std::string& version) {
  GuestLibraryLoader loader(image, slice);
  loader.measure();
  std::ostringstream ignored;
  Output output(ignored, Format::Text);
  Session session(loader, output, false);
  type(session, fmt::format("version {}\n{}app {} \"App\"", version, kChosen, identifier));
  type(session, identifier == "com.apple.springboard" ? "boot" : "start " + identifier);
  return {loader.loadCost(), loader.hookRows()};
}

std::string instructions(const Cost& cost) { return fmt::format("{} + {}", cost.own, cost.stubs); }

double ratio(const Cost& ours, const Cost& theirs) {
  return static_cast<double>(ours.own + ours.stubs) /
         static_cast<double>(theirs.own + theirs.stubs);
}

// One cut for all: the whole constructor, from its first instruction to its return.
void benchAgainstYardstick(const BenchImages& images, std::ostream& out) {
  out << "An ordinary app: own instructions + those in import stubs, and platform calls, from the "
         "constructor's first\ninstruction to its return. Registration is the difference to a "
         "build "
         "whose registering functions are empty. The\ntweaks are built by the same steps with the "
         "same flags; what the runtime does for metadata is not counted.\n\n"
         "| slice | version | library | calls | without registration | calls | plain tweak | calls "
         "| with metadata | calls | library ÷ with metadata | without registration ÷ plain |\n"
         "|---|---|---|---|---|---|---|---|---|---|---|---|\n";
  for (const Slice slice : {Slice::arm64, Slice::armv7})
    for (const char* version : kVersions) {
      const auto cost = [&](const auto& image) { return load(image, slice, kApp, version).cost; };
      const Cost all = cost(images.library);
      const Cost bare = cost(images.withoutRegistration);
      const Cost plain = cost(images.plainTweak);
      const Cost full = cost(images.plainTweakWithMetadata);
      out << fmt::format("| {} | {} | {} | {} | {} | {} | {} | {} | {} | {} | {:.2f} | {:.2f} |\n",
                         nameOf(slice), version, instructions(all), all.calls, instructions(bare),
                         bare.calls, instructions(plain), plain.calls, instructions(full),
                         full.calls, ratio(all, full), ratio(bare, plain));
    }
}

void benchFixUps(const BenchImages& images, std::ostream& out) {
  out << "\nWhat the phone's loader writes into the image; pages before any code runs.\n\n"
         "| slice | image | pages of 16 KiB | of 4 KiB | rebases | binds | binds at the first call "
         "|\n|---|---|---|---|---|---|---|\n";
  const std::pair<const char*, const std::filesystem::path&> all[] = {
      {"library", images.library},
      {"plain tweak", images.plainTweak},
      {"with metadata", images.plainTweakWithMetadata}};
  for (const Slice slice : {Slice::arm64, Slice::armv7})
    for (const auto& [name, image] : all) {
      const GuestLibraryLoader loader(image, slice);
      const FixUps large = loader.fixUps(0x4000);
      out << fmt::format("| {} | {} | {} | {} | {} | {} | {} |\n", nameOf(slice), name, large.pages,
                         loader.fixUps(0x1000).pages, large.rebases, large.binds, large.lazyBinds);
    }
}

void benchProcesses(const BenchImages& images, std::ostream& out) {
  constexpr const char* kKinds[][2] = {{"SpringBoard", "com.apple.springboard"},
                                       {"Spotify", "com.spotify.client"},
                                       {"Podcasts", "com.apple.podcasts"},
                                       {"Garmin Connect", "com.garmin.connect.mobile"},
                                       {"any other app", kApp}};
  out << "\nEach kind of process on 1141.14.\n\n| slice | process | library | calls | without "
         "registration | calls | pages written |\n|---|---|---|---|---|---|---|\n";
  for (const Slice slice : {Slice::arm64, Slice::armv7})
    for (const auto& [name, identifier] : kKinds) {
      const Cost all = load(images.library, slice, identifier, "1141.14").cost;
      const Cost bare = load(images.withoutRegistration, slice, identifier, "1141.14").cost;
      out << fmt::format("| {} | {} | {} | {} | {} | {} | {} |\n", nameOf(slice), name,
                         instructions(all), all.calls, instructions(bare), bare.calls, all.pages);
    }
}

void benchRows(const BenchImages& images, std::ostream& out) {
  out << "\nSpringBoard from the last observer to the last hook, own instructions.\n\n"
         "| slice | version | own | hooks | a hook |\n|---|---|---|---|---|\n";
  for (const Slice slice : {Slice::arm64, Slice::armv7})
    for (const char* version : kVersions) {
      const HookRows rows = load(images.library, slice, "com.apple.springboard", version).rows;
      out << fmt::format("| {} | {} | {} | {} | {:.1f} |\n", nameOf(slice), version, rows.own,
                         rows.count,
                         static_cast<double>(rows.own) / static_cast<double>(rows.count));
    }
}

Cost costOf(const std::filesystem::path& image, Slice slice, const Path& path) {
  GuestLibraryLoader loader(image, slice);
  loader.measure();
  std::ostringstream ignored;
  Output output(ignored, Format::Text);
  Session session(loader, output, false);
  type(session, kChosen + path.setUp);
  const auto content = scenario::parseLine(path.event);
  const Cost before = loader.cost();
  const auto& command = std::get<scenario::Command>(*content);
  command.run(session.device());  // the event alone, not what it leaves in the queue
  return loader.cost() - before;
}

}  // namespace

void runBench(const BenchImages& images, std::ostream& out) {
  benchAgainstYardstick(images, out);
  benchFixUps(images, out);
  benchProcesses(images, out);
  benchRows(images, out);
  out << "\n| hook | path | arm64 own | armv7 own | platform calls |\n|---|---|---|---|---|\n";
  for (const Path& path : kPaths) {
    const Cost wide = costOf(images.library, Slice::arm64, path);
    const Cost narrow = costOf(images.library, Slice::armv7, path);
    out << fmt::format("| `{}` | {} | {} | {} | {} |\n", path.hook, path.path, wide.own, narrow.own,
                       wide.calls);
  }
}

}  // namespace sim::guest
