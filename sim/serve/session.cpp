#include "sim/serve/session.hpp"

#include <fmt/format.h>

#include <nlohmann/json.hpp>
#include <stdexcept>
#include <utility>

namespace sim::serve {

using std::chrono::steady_clock;

namespace {

// Whether the device process ends a play with this line. (Its steps are not parsed: there, a quote
// within a text has a backslash before it.)
bool endsPlay(const std::string& line) {
  if (line.find("\"done\"") == std::string::npos && line.find("\"wrong\"") == std::string::npos)
    return false;
  const auto said = nlohmann::json::parse(line, nullptr, false);
  return said.is_object() && (said.contains("done") || said.contains("wrong"));
}

}  // namespace

void Session::play(std::string line) {
  const std::lock_guard lock(mutex_);
  waiting_ = std::move(line);
  news_.notify_one();
}

std::vector<std::string> Session::hear() {
  std::vector<std::string> lines;
  try {
    if (!playing_) {
      std::unique_lock lock(mutex_);
      news_.wait_for(lock, std::chrono::seconds(1), [this] { return !waiting_.empty(); });
      unsent_ = std::exchange(waiting_, "");
      playing_ = !unsent_.empty();
      deadline_ = steady_clock::now() + longestPlay_;
    }
    if (playing_ && !device_) device_.emplace(command_);
    if (device_) lines = device_->exchange(unsent_, playing_);
    for (const std::string& line : lines) playing_ = playing_ && !endsPlay(line);
    if (playing_ && lines.empty() && steady_clock::now() >= deadline_)
      throw std::runtime_error(fmt::format("it did not finish within {} s", longestPlay_.count()));
  } catch (const std::exception& gone) {
    device_.reset();
    playing_ = false;
    lines.push_back(nlohmann::json{{"gone", gone.what()}}.dump());
  }
  return lines;
}

}  // namespace sim::serve
