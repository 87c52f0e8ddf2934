#include "sim/serve/session.hpp"

#include <fmt/format.h>
#include <poll.h>
#include <sys/eventfd.h>
#include <unistd.h>

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
    : command_(std::move(command)), limits_(limits), wake_(eventfd(0, EFD_CLOEXEC | EFD_NONBLOCK)) {
  if (wake_ < 0) throw std::runtime_error("too many files are open");
  thread_ = std::thread([this] { work(); });
}

Session::~Session() {
  end();
  thread_.join();
  close(wake_);
}

bool Session::play(const std::string& line) {
  const std::lock_guard lock(mutex_);
  if (plays_.size() >= kMostWaiting) return false;
  plays_.push_back(line);
  std::uint64_t oldest = first_ + events_.size();
  for (const auto& listener : listeners_)
    if (const auto next = listener.lock()) oldest = std::min(oldest, *next);
  for (; first_ < oldest; ++first_) events_.pop_front();
  eventfd_write(wake_, 1);
  return true;
}

std::shared_ptr<std::uint64_t> Session::listen(std::optional<std::uint64_t> last) {
  const std::lock_guard lock(mutex_);
  std::erase_if(listeners_, [](const auto& listener) { return listener.expired(); });
  const std::uint64_t next = last ? *last + 1 : first_;
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
  eventfd_write(wake_, 1);
}

bool Session::hasEnded() {
  const std::lock_guard lock(mutex_);
  return ended_;
}

void Session::work() {
  while (!hasEnded() && unheard() < std::chrono::seconds(limits_.withoutListener)) {
    giveNextPlay();
    waitForNews();
    if (device_) hear();
  }
  end();
  device_.reset();
}

void Session::giveNextPlay() {
  if (playing_) return;
  {
    const std::lock_guard lock(mutex_);
    if (plays_.empty()) return;
    unwritten_ = plays_.front();
    plays_.pop_front();
  }
  try {
    if (!device_) device_ = std::make_unique<DeviceProcessHandle>(command_);
    playing_ = true;
    deadline_ = Clock::now() + std::chrono::seconds(limits_.play);
  } catch (const std::exception& error) {
    deviceHasGone(error.what());
  }
}

// At most for a second: then it is looked whether somebody still listens.
void Session::waitForNews() const {
  using std::chrono::milliseconds;
  const auto left = std::chrono::ceil<milliseconds>(deadline_ - Clock::now());
  const auto time =
      playing_ ? std::clamp(left, milliseconds(0), milliseconds(1000)) : milliseconds(1000);
  const short writing = unwritten_.empty() ? 0 : POLLOUT;
  pollfd watched[] = {
      {wake_, POLLIN, 0},
      {device_ ? device_->descriptor() : -1, static_cast<short>(POLLIN | writing), 0}};
  poll(watched, 2, static_cast<int>(time.count()));
  eventfd_t count = 0;
  eventfd_read(wake_, &count);
}

void Session::hear() {
  if (!unwritten_.empty()) device_->write(unwritten_);
  std::vector<std::string> lines;
  const bool speaks = device_->read(lines);
  for (const std::string& line : lines) {
    add(line);
    if (endsPlay(line)) playing_ = false;
  }
  if (!speaks)
    deviceHasGone(device_->end());
  else if (playing_ && Clock::now() >= deadline_)
    deviceHasGone(fmt::format("it did not finish within {} s", limits_.play));
}

void Session::add(const std::string& event) {
  const std::lock_guard lock(mutex_);
  events_.push_back(event);
  news_.notify_all();
}

void Session::deviceHasGone(const std::string& why) {
  device_.reset();
  unwritten_.clear();
  playing_ = false;
  add(nlohmann::json{{"gone", why}}.dump());
}

}  // namespace sim::serve
