#include "sim/explore/playback.hpp"

#include <sstream>

#include "sim/explore/draw.hpp"
#include "sim/platform/device_actions.hpp"

namespace sim::explore {

namespace {

// One session with its trace and its watch.
class Stage {
 public:
  explicit Stage(LibraryLoader& loader)
      : output_(trace_, scenario::Format::Text), session_(loader, output_, false) {}

  // Throws ActionError if the device is in no state for the command; then nothing has happened.
  std::optional<Violation> play(const std::string& line) {
    const auto content = scenario::parseLine(line);
    const auto before = static_cast<std::size_t>(trace_.tellp());
    try {
      session_.run(std::get<scenario::Command>(*content));
    } catch (const ActionError&) {
      trace_.str(trace_.str().substr(0, before));  // not even echoed
      trace_.seekp(0, std::ios::end);
      throw;
    }
    return invariants_.check(line);
  }
  std::string trace() const { return trace_.str(); }

 private:
  std::ostringstream trace_;
  scenario::Output output_;
  scenario::Session session_;
  Invariants invariants_{session_};
};

}  // namespace

Playback play(LibraryLoader& loader, const Lines& lines, OutOfPlace outOfPlace) {
  Stage stage(loader);
  Playback playback;
  for (const std::string& line : lines) {
    try {
      playback.violation = stage.play(line);
    } catch (const ActionError&) {
      if (outOfPlace == OutOfPlace::Ends) break;
    }
    if (playback.violation) break;
    ++playback.line;
  }
  playback.trace = stage.trace();
  return playback;
}

Playback drawAndPlay(LibraryLoader& loader, std::uint64_t seed, Lines& lines,
                     const std::function<bool(const Lines&)>& drawn) {
  constexpr std::size_t kFewest = 20;
  constexpr std::size_t kMost = 90;
  Random random(seed);
  Stage stage(loader);
  Playback playback;
  const auto add = [&](const std::string& line) {
    lines.push_back(line);
    if (!drawn(lines)) {
      lines.pop_back();
      return true;
    }
    try {
      playback.violation = stage.play(line);
      if (!playback.violation) ++playback.line;
    } catch (const ActionError&) {
      lines.pop_back();
    }
    return !playback.violation;
  };
  bool going = true;
  const auto addAll = [&](const Lines& some) {
    for (const std::string& line : some) going = going && add(line);
  };
  addAll(drawBeginning(random));
  const std::size_t count = kFewest + random.below(kMost - kFewest);
  while (going && lines.size() < count) addAll(drawCommands(random));
  playback.trace = stage.trace();
  return playback;
}

Lines split(const std::string& text) {
  Lines lines;
  std::istringstream in(text);
  for (std::string line; std::getline(in, line);) lines.push_back(line);
  return lines;
}

std::string joined(const Lines& lines) {
  std::string text;
  for (const std::string& line : lines) text += line + "\n";
  return text;
}

}  // namespace sim::explore
