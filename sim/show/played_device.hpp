// One device that plays a scenario which somebody is still writing: lines are added and it goes on,
// a line is changed and it starts afresh. Nothing of a phone; leaves out who asks
// (sim/show/device_process.hpp).
#pragma once
#include <functional>
#include <nlohmann/json_fwd.hpp>
#include <sstream>

#include "sim/scenario/recorder.hpp"
#include "sim/scenario/runner.hpp"

namespace sim::show {

using Lines = std::vector<std::string>;
using Json = nlohmann::ordered_json;

// A line that is no line of a scenario; which one counts from 0.
struct WrongLine {
  std::size_t line;
  std::string message;
};

class PlayedDevice {
 public:
  // `loader` is borrowed. `settingsPage` as in RunOptions.
  PlayedDevice(LibraryLoader& loader, std::filesystem::path settingsPage)
      : loader_(loader), settingsPage_(std::move(settingsPage)) {}

  // Plays a whole scenario. What begins like the one before goes on from there. `tell` gets each
  // step after the part in common, as docs/show.md describes it; before the first one `begins` gets
  // its index. Nothing is played if a line is wrong, and the device stays as it is. A command that
  // cannot be carried out is told as an error, and is the last.
  std::optional<WrongLine> play(const Lines& lines, const std::function<void(std::size_t)>& begins,
                                const std::function<void(const Json&)>& tell);

 private:
  using Content = std::optional<std::variant<scenario::Command, scenario::Expectation>>;
  Json step(std::size_t index, const Content& content);
  void startAfresh();

  LibraryLoader& loader_;
  std::filesystem::path settingsPage_;
  Lines played_;
  bool stopped_ = false;  // at the last line played, which could not be carried out
  std::ostringstream unseen_;
  scenario::Output output_{unseen_, scenario::Format::Text};
  std::unique_ptr<scenario::Recorder> recorder_;  // outlives the device, whose end it records
  std::unique_ptr<scenario::Session> session_;
};

}  // namespace sim::show
