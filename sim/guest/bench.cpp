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

void benchLoads(const std::filesystem::path& image, Slice slice, std::ostream& out) {
  const char* const kinds[][2] = {{"SpringBoard", "com.apple.springboard"},
                                  {"Spotify", "com.spotify.client"},
                                  {"Podcasts", "com.apple.podcasts"},
                                  {"Garmin Connect", "com.garmin.connect.mobile"},
                                  {"any other app", "com.example.notes"}};
  for (const auto& [name, identifier] : kinds) {
    GuestLibraryLoader loader(image, slice);
    loader.measure();
    std::ostringstream ignored;
    Output output(ignored, Format::Text);
    Session session(loader, output, false);
    type(session, kChosen + fmt::format("app {} \"App\"", identifier));
    if (std::string(identifier) == "com.apple.springboard")
      type(session, "boot");
    else
      type(session, fmt::format("start {}", identifier));
    const Cost registration = loader.registrationCost();
    const Cost set = loader.loadCost() - registration;
    const char* sliceName = slice == Slice::arm64 ? "arm64" : "armv7";
    out << fmt::format("| {} | {} | {} | {} | {} | {} | {} | {} | {} |\n", sliceName, name, set.own,
                       set.stubs, set.calls, registration.own, registration.stubs,
                       registration.calls, loader.loadCost().pages);
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

void runBench(const std::filesystem::path& image, std::ostream& out) {
  out << "| slice | process | own instructions | in stubs | platform calls | registration: own | "
         "in stubs | platform calls | pages written |\n|---|---|---|---|---|---|---|---|---|\n";
  for (const Slice slice : {Slice::arm64, Slice::armv7}) benchLoads(image, slice, out);
  out << "\n| hook | path | arm64 own | armv7 own | platform calls |\n|---|---|---|---|---|\n";
  for (const Path& path : kPaths) {
    const Cost wide = costOf(image, Slice::arm64, path);
    const Cost narrow = costOf(image, Slice::armv7, path);
    out << fmt::format("| `{}` | {} | {} | {} | {} |\n", path.hook, path.path, wide.own, narrow.own,
                       wide.calls);
  }
}

}  // namespace sim::guest
