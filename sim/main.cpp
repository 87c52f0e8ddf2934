// corvalen-sim: runs the library on a simulated device. The command line alone; what its commands
// do stands in sim/scenario, sim/explore, sim/inject and sim/guest.
#include <sys/ioctl.h>
#include <unistd.h>

#include <CLI/CLI.hpp>
#include <cstdlib>
#include <fstream>
#include <iostream>
#include <sstream>

#include "sim/explore/explorer.hpp"
#include "sim/guest/bench.hpp"
#include "sim/guest/guest_library.hpp"
#include "sim/host/host_library.hpp"
#include "sim/inject/campaign.hpp"
#include "sim/scenario/runner.hpp"
#include "sim/scenario/shell.hpp"
#include "sim/serve/server.hpp"
#include "sim/show/device_process.hpp"
#include "sim/show/lanes.hpp"
#include "sim/show/static_page.hpp"

namespace {

using namespace sim;
using namespace sim::scenario;

struct CommandLine {
  std::string format = "text";
  std::string calls = "effects";
  bool leaks = false;
  bool lanes = false;
  bool failFast = false;
  std::string image;
  std::string slice;  // the first that the image holds, if none is asked for
  std::string real;
  std::filesystem::path keep;
  std::string settingsPage;  // the product's, if none is named
  guest::GuestDebugging debugging;
  std::vector<std::string> files;
  search::SearchOptions search;
  inject::CampaignOptions injecting;
  std::string checkUp;
  serve::ServeOptions serving;

  RunOptions options() const {
    // Colours are for people at a terminal who do not mind them (no-color.org).
    const char* none = std::getenv("NO_COLOR");
    const bool colour = format == "text" && calls == "effects" && isatty(STDOUT_FILENO) != 0 &&
                        (!none || *none == '\0');
    return {format == "json" ? Format::Json : Format::Text, calls == "all", leaks, colour,
            settingsPage};
  }
};

std::filesystem::path programFolder() {
  return std::filesystem::read_symlink("/proc/self/exe").parent_path();
}

// The library's host build lies beside the program, unless the environment names another one. The
// settings bundle lies beside the library.
std::filesystem::path hostLibrary() {
  if (const char* named = std::getenv("CORVALEN_LIBRARY")) return named;
  return programFolder() / "proCorvalen.so";
}

std::unique_ptr<LibraryLoader> makeHostLoader() {
  const auto file = hostLibrary();
  if (!std::filesystem::exists(file)) throw std::runtime_error("cannot find " + file.string());
  return std::make_unique<HostLibraryLoader>(file);
}

// The host build, or the device binary that was asked for.
std::unique_ptr<LibraryLoader> makeLoader(const CommandLine& line) {
  if (line.image.empty()) return makeHostLoader();
  const guest::Slice slice = line.slice.empty()      ? guest::slicesOf(line.image).front()
                             : line.slice == "arm64" ? guest::Slice::arm64
                                                     : guest::Slice::armv7;
  return std::make_unique<guest::GuestLibraryLoader>(line.image, slice, line.debugging);
}

// The host build, with a device binary each of its slices, and the real runtime if asked for.
std::vector<explore::Build> makeBuilds(const std::string& image, const std::string& real) {
  std::vector<explore::Build> builds = {{"host", makeHostLoader}};
  if (!real.empty()) builds.push_back({"the real runtime", {}, real});
  if (image.empty()) return builds;
  for (const guest::Slice slice : guest::slicesOf(image))
    builds.push_back({slice == guest::Slice::arm64 ? "arm64" : "armv7", [image, slice] {
                        return std::make_unique<guest::GuestLibraryLoader>(image, slice);
                      }});
  for (const auto& build : builds)
    if (build.make) build.make();  // what cannot be loaded is said at once
  return builds;
}

std::optional<std::string> readScenario(const std::string& file) {
  std::ostringstream text;
  if (file == "-") {
    text << std::cin.rdbuf();
    return text.str();
  }
  std::ifstream in(file, std::ios::binary);
  if (!in || !std::filesystem::is_regular_file(file)) return std::nullopt;
  text << in.rdbuf();
  return text.str();
}

std::string shownName(const std::string& file) { return file == "-" ? "standard input" : file; }

std::string readOrThrow(const std::string& file) {
  if (auto text = readScenario(file)) return *text;
  throw std::runtime_error(file + ": cannot be read");
}

// One scenario as a page of its own.
int runAsPage(const CommandLine& line) {
  if (line.files.size() != 1) throw std::runtime_error("--format html takes one scenario");
  const std::string& file = line.files.front();
  const std::string text = readOrThrow(file);
  const auto loader = makeLoader(line);
  const std::string build = line.image.empty() ? "host"
                            : line.slice.empty()
                                ? std::filesystem::path(line.image).filename().string()
                                : line.slice;
  return static_cast<int>(show::printStaticPage(programFolder() / "show", build, shownName(file),
                                                text, *loader, line.options(), std::cout,
                                                std::cerr));
}

// As wide as the terminal, or as one commonly is.
std::size_t columns() {
  winsize size{};
  const bool known = ioctl(STDOUT_FILENO, TIOCGWINSZ, &size) == 0 && size.ws_col > 0;
  return known ? size.ws_col : 120;
}

int runAsLanes(const CommandLine& line) {
  const auto loader = makeLoader(line);
  int worst = 0;
  for (const std::string& file : line.files)
    worst = std::max(
        worst, static_cast<int>(show::printLanes(shownName(file), readOrThrow(file), *loader,
                                                 line.options(), columns(), std::cout, std::cerr)));
  return worst;
}

int run(const CommandLine& line) {
  if (line.format == "html") return runAsPage(line);
  if (line.lanes) return runAsLanes(line);
  int worst = 0;
  const auto loader = makeLoader(line);
  for (const std::string& file : line.files) {
    Status status = Status::Wrong;
    if (const auto text = readScenario(file))
      status = runScenario(shownName(file), *text, *loader, line.options(), std::cout, std::cerr);
    else
      std::cerr << file << ": cannot be read\n";
    std::cout.flush();
    worst = std::max(worst, static_cast<int>(status));
    if (line.failFast && worst != 0) break;
  }
  return worst;
}

int page(const CommandLine& line) {
  const std::string& file = line.files.front();
  const std::string text = readOrThrow(file);
  const auto loader = makeLoader(line);
  return static_cast<int>(
      printPage(shownName(file), text, *loader, line.options(), std::cout, std::cerr));
}

// How much is tried.
void addLimits(CLI::App& command, CommandLine& line) {
  command
      .add_option("--count", line.search.count, "how many to try; otherwise 1000, or every fault")
      ->check(CLI::Range(1, 1000000000));
  command.add_option("--jobs", line.search.jobs, "how many at a time")->check(CLI::Range(1, 256));
  command.add_option("--minutes", line.search.minutes, "stop after that long")
      ->check(CLI::PositiveNumber);
}

void addExploreOptions(CLI::App& command, CommandLine& line) {
  command.add_option("--seed", line.search.first, "of the first scenario; the next count up");
  addLimits(command, line);
  command.add_option("--image", line.image, "compare this device binary's slices too");
  command.add_option("--keep", line.keep, "keep what is drawn in this folder")
      ->check(CLI::ExistingDirectory);
  command.add_option("--real", line.real, "compare this program of the real runtime too");
}

int injectFaults(const CommandLine& line) {
  inject::Campaign campaign;
  campaign.makeLoader = [&line] { return makeLoader(line); };
  for (const std::string& file : line.files)
    campaign.tours.push_back(parseScript(shownName(file), readOrThrow(file)));
  campaign.checkUp = parseScript(shownName(line.checkUp), readOrThrow(line.checkUp));
  return inject::inject(campaign, line.injecting, line.search, std::cout, std::cerr) ? 1 : 0;
}

void addInjectOptions(CLI::App& command, CommandLine& line) {
  command.add_flag("--pairs", line.injecting.pairs, "any two faults together, not each alone");
  command.add_option("--seed", line.injecting.seed, "mixes the order");
  addLimits(command, line);
  command.add_option("--image", line.image, "run this device binary in place of the host build");
  command.add_option("--slice", line.slice, "which of the binary's slices")
      ->check(CLI::IsMember({"arm64", "armv7"}));
  command.add_option("--check-up", line.checkUp, "what must hold afterwards")->required();
  command.add_option("TOUR", line.files, "scenarios to be played with faults")->required();
}

// The page's devices are processes of this same program: of the host build, and of each slice of
// the device binary that is named.
int servePage(CommandLine& line) {
  serve::ServeOptions& options = line.serving;
  options.builds = {{"host", {"/proc/self/exe", "device"}}};
  if (!line.image.empty())
    for (const guest::Slice slice : guest::slicesOf(line.image)) {
      const std::string name = slice == guest::Slice::arm64 ? "arm64" : "armv7";
      options.builds.push_back(
          {name, {"/proc/self/exe", "device", "--image", line.image, "--slice", name}});
    }
  options.pages = programFolder() / "show";
  options.version = CORVALEN_VERSION;
  serve::serve(options, std::cout);
  return 0;
}

void addServeOptions(CLI::App& command, CommandLine& line) {
  serve::ServeOptions& options = line.serving;
  command.add_option("--port", options.port, "on the loopback address; otherwise a free one")
      ->check(CLI::Range(1024, 65535));
  command.add_option("--scenarios", options.scenarios, "a folder with scenarios to open")
      ->check(CLI::ExistingDirectory);
  command.add_option("--saved", options.saved, "a folder to save scenarios in")
      ->check(CLI::ExistingDirectory);
  command.add_option("--image", line.image, "offer this device binary's slices too")
      ->check(CLI::ExistingFile);
  command
      .add_option("--longest-play", options.longestPlay, "seconds, after which a device is ended")
      ->check(CLI::Range(1, 3600));
}

void addOptions(CLI::App& command, CommandLine& line) {
  command.add_option("--format", line.format, "how the trace is printed")
      ->check(CLI::IsMember({"text", "json", "html"}));
  command.add_option("--calls", line.calls, "effects only, or every message and function call")
      ->check(CLI::IsMember({"effects", "all"}));
  command.add_flag("--leaks", line.leaks, "report references that the library lost");
  command.add_option("--image", line.image, "run this device binary in place of the host build");
  command.add_option("--slice", line.slice, "which of the binary's slices")
      ->check(CLI::IsMember({"arm64", "armv7"}));
  command
      .add_option("--settings-page", line.settingsPage,
                  "the page in the Settings app that this entry of PreferenceLoader's describes")
      ->check(CLI::ExistingFile);
  command.add_flag("--guest-calls", line.debugging.calls,
                   "with --image: show calls between binary and platform");
  command.add_flag("--guest-steps", line.debugging.steps, "with --image: show every instruction");
  command.add_option("--guest-break", line.debugging.breakAt,
                     "with --image: show registers and a back trace at this symbol");
}

}  // namespace

int main(int count, char** words) {
  CLI::App app{"Runs Corvalen Pro on a simulated device"};
  app.require_subcommand(1);
  app.set_version_flag("--version", CORVALEN_VERSION);
  CommandLine line;
  CLI::App* runCommand = app.add_subcommand("run", "play scenarios, each on a fresh device");
  addOptions(*runCommand, line);
  runCommand->add_flag("--lanes", line.lanes, "print a column for each process");
  runCommand->add_flag("--fail-fast", line.failFast, "stop after the first scenario that fails");
  runCommand->add_option("SCENARIO", line.files, "files, or - for standard input")->required();
  CLI::App* pageCommand =
      app.add_subcommand("page", "play a scenario and print the settings page that it ends with");
  pageCommand->add_option("SCENARIO", line.files, "a file, or - for standard input")
      ->required()
      ->expected(1);
  CLI::App* shellCommand = app.add_subcommand("shell", "type the same commands one at a time");
  addOptions(*shellCommand, line);
  CLI::App* deviceCommand = app.add_subcommand(
      "device", "a device for another program: scenarios in, what happens out, as JSON lines");
  addOptions(*deviceCommand, line);
  CLI::App* serveCommand = app.add_subcommand("serve", "show devices to a browser on this machine");
  addServeOptions(*serveCommand, line);
  CLI::App* benchCommand = app.add_subcommand("bench", "count what a device binary costs");
  guest::BenchImages bench;
  benchCommand->add_option("--image", bench.library, "the device binary")->required();
  benchCommand->add_option("--without-registration", bench.withoutRegistration)->required();
  benchCommand->add_option("--plain-tweak", bench.plainTweak)->required();
  benchCommand->add_option("--plain-tweak-with-metadata", bench.plainTweakWithMetadata)->required();
  CLI::App* exploreCommand =
      app.add_subcommand("explore", "search for scenarios that break what must always hold");
  addExploreOptions(*exploreCommand, line);
  CLI::App* injectCommand =
      app.add_subcommand("inject", "play scenarios with everything failing that can");
  addInjectOptions(*injectCommand, line);
  try {
    app.parse(count, words);
  } catch (const CLI::ParseError& error) {
    const int code = app.exit(error);
    return code == 0 ? 0 : 2;
  }
  try {
    if (*runCommand) return run(line);
    if (*deviceCommand) {
      show::serveDevice(*makeLoader(line), line.settingsPage, std::cin, std::cout);
      return 0;
    }
    if (*serveCommand) return servePage(line);
    if (*pageCommand) return page(line);
    // With a time limit alone the count is no limit.
    if (*exploreCommand && line.search.minutes > 0 && exploreCommand->count("--count") == 0)
      line.search.count = 1000000000;
    if (*exploreCommand)
      return explore::explore(makeBuilds(line.image, line.real), line.search, line.keep, std::cout,
                              std::cerr)
                 ? 1
                 : 0;
    line.injecting.countGiven = injectCommand->count("--count") > 0;
    if (*injectCommand) return injectFaults(line);
    if (*benchCommand) {
      guest::runBench(bench, std::cout);
      return 0;
    }
    return static_cast<int>(runShell(*makeLoader(line), line.options()));
  } catch (const std::exception& error) {
    std::cerr << "corvalen-sim: " << error.what() << '\n';
    return 2;
  }
}
