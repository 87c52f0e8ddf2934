#include "sim/show/played_device.hpp"

#include <algorithm>
#include <nlohmann/json.hpp>

#include "sim/platform/device_actions.hpp"
#include "sim/scenario/words.hpp"
#include "sim/show/shown_state.hpp"

namespace sim::show {

using namespace scenario;

void PlayedDevice::startAfresh() {
  played_.clear();
  stopped_ = false;
  session_.reset();
  session_ = std::make_unique<Session>(loader_, output_, false);
  Device& device = session_->device();
  device.state.settingsEntry = settingsPage_;
  recorder_ = std::make_unique<Recorder>(device.clock);
  device.callTree = recorder_.get();
}

Json PlayedDevice::step(std::size_t index, const Content& content) {
  Json step = {{"step", index}, {"line", ""}, {"rows", Json::array()}};
  if (content) {
    if (const auto* command = std::get_if<Command>(&*content)) {
      step["line"] = command->echo;
      try {
        session_->run(*command);
        if (const auto answer = session_->answer()) step["answer"] = *answer;
      } catch (const ActionError& error) {
        step["error"] = error.what();
        stopped_ = true;
      }
    } else {
      const auto& expectation = std::get<Expectation>(*content);
      step["line"] = expectation.written;
      step["holds"] = session_->holds(expectation);
      if (!step["holds"]) step["instead"] = session_->seen();
    }
  }
  for (const Row& row : recorder_->take()) step["rows"].push_back(asJson(row));
  session_->device().callTree = nullptr;  // a look at the device is nothing that happened to it
  step["state"] = stateOf(session_->device());
  session_->device().callTree = recorder_.get();
  unseen_.str("");
  return step;
}

std::optional<WrongLine> PlayedDevice::play(const Lines& lines,
                                            const std::function<void(std::size_t)>& begins,
                                            const std::function<void(const Json&)>& tell) {
  std::vector<Content> contents;
  for (const std::string& line : lines) {
    try {
      if (line.find('\n') != std::string::npos) throw SyntaxError("a line with a line feed in it");
      contents.push_back(parseLine(line));
    } catch (const SyntaxError& error) {
      return WrongLine{contents.size(), error.what()};
    }
  }
  const auto differs = std::ranges::mismatch(played_, lines).in1;
  const auto common = static_cast<std::size_t>(differs - played_.begin());
  const bool goesOn = session_ && common == played_.size() && !stopped_;
  if (!goesOn) startAfresh();
  // What could not be carried out is told again: whoever asks may have missed it.
  const std::size_t first = goesOn ? common : std::min(common, lines.size());
  begins(first);
  for (std::size_t i = played_.size(); i < lines.size() && !stopped_; ++i) {
    const Json told = step(i, contents[i]);
    played_.push_back(lines[i]);
    if (i >= first || stopped_) tell(told);
  }
  return std::nullopt;
}

}  // namespace sim::show
