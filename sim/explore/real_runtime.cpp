#include "sim/explore/real_runtime.hpp"

#include <unistd.h>

#include <algorithm>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <memory>
#include <stdexcept>
#include <string_view>

#include "sim/explore/playback.hpp"

namespace sim::explore {

namespace fs = std::filesystem;

namespace {

struct TemporaryFile {
  fs::path path = fs::temp_directory_path() / "corvalen-drawn-XXXXXX";
  explicit TemporaryFile(const std::string& text) {
    std::string name = path.string();
    const int file = mkstemp(name.data());
    if (file < 0) throw std::runtime_error("cannot make " + name);
    close(file);
    path = name;
    std::ofstream(path) << text;
  }
  ~TemporaryFile() { fs::remove(path); }
};

}  // namespace

bool programsPlay(const std::string& line) {
  // GNUstep reads malformed property lists otherwise, and takes no address with a query behind a
  // bare host; the rest is left out there (docs/real-runtime.md).
  static constexpr std::string_view kNot[] = {
      "prefs-file ", "can-open twitter", "framework ", "selectors ",
      "no-method ",  "daemon ",          "arguments ", "neighbour ",
      "category ",   "app-alert",        "app-timer",  "during ",
      "settings ",   "cfprefsd ",        "language ",  "end com.apple.Preferences"};
  const auto begins = [&](std::string_view start) { return line.starts_with(start); };
  if (std::ranges::any_of(kNot, begins)) return false;
  return !begins("player ") || line.ends_with("never") || line.find(" after ") != line.npos;
}

std::string playedByProgram(const std::string& program, const search::Lines& lines) {
  const TemporaryFile file(joined(lines));
  const std::string command = program + " " + file.path.string() + " 2>&1";
  const std::unique_ptr<FILE, int (*)(FILE*)> pipe(popen(command.c_str(), "r"), pclose);
  std::string printed;
  char buffer[4096];
  while (pipe) {
    const std::size_t count = std::fread(buffer, 1, sizeof buffer, pipe.get());
    if (count == 0) break;
    printed.append(buffer, count);
  }
  return printed;
}

}  // namespace sim::explore
