#include "sim/serve/session.hpp"

#include <fmt/format.h>

#include <algorithm>
#include <nlohmann/json.hpp>
#include <stdexcept>

namespace sim::serve {

namespace {

constexpr std::size_t kMostWaiting = 32;
constexpr std::size_t kMostListeners = 2;
constexpr std::size_t kBatch = 512UL * 1024;  // bytes

// Whether the device process ends a play with this line. (Its steps are not parsed: there, a quote
// within a text has a backslash before it.)
bool endsPlay(const std::string& line) {
  if (line.find("\"done\"") == std::string::npos && line.find("\"wrong\"") == std::string::npos)
    return false;
  const auto said = nlohmann::json::parse(line, nullptr, false);
  return said.is_object() && (said.contains("done") || said.contains("wrong"));
}

}  // namespace

Session::Session(std::vector<std::string> command, const SessionLimits& limits)
    : command_(std::move(command)), limits_(limits), thread_([this] { work(); }) {}

Session::~Session() {
  end();
  thread_.join();
}

bool Session::play(const std::string& line) {
  const std::lock_guard lock(mutex_);
  if (plays_.size() >= kMostWaiting) return false;
  plays_.push_back(line);
  std::uint64_t oldest = first_ + events_.size();
  for (const auto& listener : listeners_)
    if (const auto next = listener.lock()) oldest = std::min(oldest, *next);
  for (; first_ < oldest; ++first_) events_.pop_front();
  news_.notify_all();
  return true;
}

std::shared_ptr<std::uint64_t> Session::listen(std::uint64_t last) {
  const std::lock_guard lock(mutex_);
  std::erase_if(listeners_, [](const auto& listener) { return listener.expired(); });
  const std::uint64_t next = last == 0 ? first_ : last + 1;
  if (ended_ || listeners_.size() >= kMostListeners || next < first_ ||
      next > first_ + events_.size())
    return nullptr;
  auto listener = std::make_shared<std::uint64_t>(next);
  listeners_.push_back(listener);
  return listener;
}

std::optional<std::string> Session::wait(std::uint64_t& next) {
  std::unique_lock lock(mutex_);
  const auto isNews = [&] { return next < first_ + events_.size(); };
  news_.wait_for(lock, std::chrono::seconds(1), [&] { return ended_ || isNews(); });
  if (ended_ && !isNews()) return std::nullopt;
  std::string batch;
  for (; isNews() && batch.size() < kBatch; ++next)
    batch += fmt::format("id: {}\ndata: {}\n\n", next, events_[next - first_]);
  // (Something has to be written for a listener that left to be noticed.)
  return batch.empty() ? ":\n\n" : batch;
}

Session::Clock::duration Session::unheard() {
  const std::lock_guard lock(mutex_);
  for (const auto& listener : listeners_)
    if (!listener.expired()) heard_ = Clock::now();
  return Clock::now() - heard_;
}

void Session::end() {
  const std::lock_guard lock(mutex_);
  ended_ = true;
  news_.notify_all();
}

bool Session::hasEnded() {
  const std::lock_guard lock(mutex_);
  return ended_;
}

void Session::work() {
  while (!hasEnded() && unheard() < std::chrono::seconds(limits_.withoutListener)) {
    try {
      carryOut(nextPlay());
    } catch (const std::exception& gone) {
      device_.reset();
      add(nlohmann::json{{"gone", gone.what()}}.dump());
    }
  }
  end();
  device_.reset();
}

// Empty if none comes within a second.
std::string Session::nextPlay() {
  std::unique_lock lock(mutex_);
  news_.wait_for(lock, std::chrono::seconds(1), [this] { return ended_ || !plays_.empty(); });
  if (plays_.empty()) return "";
  std::string play = std::move(plays_.front());
  plays_.pop_front();
  return play;
}

void Session::carryOut(std::string play) {
  if (!device_ && !play.empty()) device_ = std::make_unique<DeviceProcessHandle>(command_);
  const auto deadline = Clock::now() + std::chrono::seconds(limits_.play);
  bool playing = !play.empty();
  if (!playing && device_) device_->read(false);  // it may have died
  while (playing && !hasEnded()) {
    if (!play.empty()) device_->write(play);
    for (const std::string& line : device_->read(play.empty())) {
      add(line);
      playing = playing && !endsPlay(line);
    }
    if (playing && Clock::now() >= deadline)
      throw std::runtime_error(fmt::format("it did not finish within {} s", limits_.play));
  }
}

void Session::add(const std::string& event) {
  const std::lock_guard lock(mutex_);
  events_.push_back(event);
  news_.notify_all();
}

}  // namespace sim::serve
