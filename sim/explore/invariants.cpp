#include "sim/explore/invariants.hpp"

#include <fmt/format.h>

#include <algorithm>
#include <set>

#include "sim/explore/names.hpp"
#include "sim/scenario/settings_file.hpp"
#include "sim/scenario/words.hpp"
#include "sim/settings/preferences_daemon.hpp"

namespace sim::explore {

namespace {

const std::string kCommandFunction = "MRMediaRemoteSendCommand";

bool wasAny(const std::vector<std::string>& words, std::initializer_list<const char*> names) {
  return std::ranges::find(names, words[0]) != names.end();
}

}  // namespace

std::size_t Invariants::count(const std::string& call, const std::string& process) const {
  return static_cast<std::size_t>(
      std::ranges::count_if(session_.effects(), [&](const auto& effect) {
        return (process.empty() || effect.process == process) &&
               scenario::matches(call, effect.call);
      }));
}

std::optional<Violation> Invariants::check(const std::string& command) {
  struct Row {
    const char* rule;
    std::optional<Violation> (Invariants::*check)(const Words&);
  };
  static constexpr Row kRows[] = {
      {rule::kNoCrash, &Invariants::noCrash},
      {rule::kNoLeak, &Invariants::noLeak},
      {rule::kFewTimers, &Invariants::fewTimers},
      {rule::kKnownPosts, &Invariants::knownPosts},
      {rule::kKnownCommandLines, &Invariants::knownCommandLines},
      {rule::kOnlyListedApps, &Invariants::onlyListedApps},
      {rule::kPassedOnOnce, &Invariants::passedOnOnce},
      {rule::kNeighbours, &Invariants::neighbours},
      {rule::kAnswered, &Invariants::answered},
      {rule::kOneGreeting, &Invariants::oneGreeting},
      {rule::kSettingsKept, &Invariants::settingsKept},
      {rule::kPageKept, &Invariants::pageKept},
  };
  Words words;
  for (const auto& word : scenario::splitWords(command)) words.push_back(word.text);
  const std::uint64_t changes = session_.device().files.changes();
  if (changes != std::exchange(fileChanges_, changes) || !settings_)
    settings_ = scenario::readSettings(session_.device());
  interrupted_ = session_.device().interrupted() !=
                 std::exchange(interruptions_, session_.device().interrupted());
  // What cfprefsd wrote its older copy over is lost without anybody here having done it: what was
  // set outside of the page, or a marker of the greeting.
  const std::size_t overwritten = session_.device().service<PreferencesDaemon>().overwritten();
  if (overwritten != std::exchange(overwritten_, overwritten)) {
    announced_.clear();
    greeted_ = false;
  }
  std::optional<Violation> first;
  for (const Row& row : kRows) {
    auto violation = (this->*row.check)(words);  // all of them, as some remember what they saw
    if (!violation || first || excused_.contains(row.rule)) continue;
    violation->rule = row.rule;
    first = violation;
  }
  noteOutdated();
  return first;
}

void Invariants::settingsChangedOutside() {
  announced_.clear();
  page_.forget();
  greeted_ = false;
}

// ---- The process and its memory

// No phone changes its version under a running process: with classes that answer what their own
// version answers, the library, which asks for the version each time, would send them another's.
void Invariants::noteOutdated() {
  outdated_.clear();
  for (const Process* process : session_.device().processes())
    if (process->selectorsOf && *process->selectorsOf != session_.device().state.version)
      outdated_.insert(process->identifier);
}

std::optional<Violation> Invariants::noCrash(const Words&) {
  for (const auto& effect : session_.effects())
    if (effect.call.starts_with("crash: ") && !outdated_.contains(effect.process))
      return Violation{{}, effect.process + " " + effect.call, "expect-no crash: *"};
  return std::nullopt;
}

std::optional<Violation> Invariants::noLeak(const Words&) {
  const auto leaks = session_.leaks();
  if (leaks.empty()) return std::nullopt;
  return Violation{{}, leaks.front(), {}};
}

// SpringBoard has one watcher; a player one poll timer, and Spotify one more that saves its state.
// An app with a category on NSTimer has timers of its own.
std::optional<Violation> Invariants::fewTimers(const Words&) {
  for (const Process* process : session_.device().processes()) {
    if (process->categories.contains("NSTimer")) continue;
    std::size_t most = 0;
    if (process->isSpringBoard() || process->identifier == kPodcasts) most = 1;
    if (process->identifier == kSpotify) most = 2;
    if (process->timers.size() > most)
      return Violation{
          {}, fmt::format("{} has {} timers", process->identifier, process->timers.size()), {}};
  }
  return std::nullopt;
}

// ---- What leaves the process

std::optional<Violation> Invariants::knownPosts(const Words&) {
  static const std::map<std::string, std::set<std::string>> known = {
      {kSpringBoard,
       {"bfaK8ayWXeXMQum", "GYbIKwUwyBsCan1l", "YHePE3bJB3diJ1T", "RjZoLhphi82WYz",
        "PV2qdgEyDYK8gUci"}},
      {kSpotify, {"QjnUR4g9fc9hLq"}},
      {kPodcasts, {"QjnUR4g9fc9hLq"}},
      {kGarmin, {"FejJ91yPhXo8E"}},
      {kSettings, {"bfaK8ayWXeXMQum", "VNutj2BhJMTGTwVk"}},
  };
  static const std::set<std::string> others = {"VNutj2BhJMTGTwVk"};
  const std::string start = "notify_post(\"";
  for (const auto& effect : session_.effects()) {
    if (!effect.call.starts_with(start)) continue;
    const auto name = effect.call.substr(start.size(), effect.call.size() - start.size() - 2);
    const auto found = known.find(effect.process);
    if (!(found == known.end() ? others : found->second).contains(name))
      return Violation{{}, effect.process + " " + effect.call, "expect-no " + effect.call};
  }
  return std::nullopt;
}

std::optional<Violation> Invariants::knownCommandLines(const Words&) {
  static const std::set<std::string> known = {
      R"(system("killall -9 BTAvrcp; killall -9 BTLEServer; killall -9 iapd;"))",
      R"(system("killall -9 Music"))"};
  for (const auto& effect : session_.effects())
    if (effect.call.starts_with("system(") &&
        (!known.contains(effect.call) || effect.process != kSpringBoard))
      return Violation{{}, effect.process + " " + effect.call, "expect-no " + effect.call};
  return std::nullopt;
}

// Whatever the library launches of its own accord, AppList lists.
std::optional<Violation> Invariants::onlyListedApps(const Words& words) {
  if (interrupted_ || wasAny(words, {"open", "tap-icon"})) return std::nullopt;
  const std::string start = "-[SpringBoard launchApplicationWithIdentifier:\"";
  DeviceState& state = session_.device().state;
  for (const auto& effect : session_.effects()) {
    if (!effect.call.starts_with(start)) continue;
    const auto id =
        effect.call.substr(start.size(), effect.call.find('"', start.size()) - start.size());
    const App* app = state.app(id);
    if (!app || !app->listed || state.missingClasses.contains("ALApplicationList"))
      return Violation{{}, effect.call, "expect-no " + effect.call};
  }
  return std::nullopt;
}

// ---- Passing on

namespace {

// The process that the call is made in, if it can be made there.
Process* answering(Device& device, const StockCall& stock) {
  Process* process = device.process(stock.process);
  Class* cls = process ? process->findClass(stock.cls) : nullptr;
  return cls && cls->find(stock.selector) ? process : nullptr;
}

}  // namespace

std::optional<Violation> Invariants::passedOnOnce(const Words& words) {
  Device& device = session_.device();
  const auto stock = stockCall(words, device);
  if (!stock || interrupted_ || !answering(device, *stock)) return std::nullopt;
  const std::size_t passed = count(stock->call, stock->process);
  const std::size_t instead =
      count("-[SpringBoard launchApplicationWithIdentifier:*", kSpringBoard) +
      count("-[SBLockScreenViewController setPasscodeLockVisible:* withUnlockSource:*") +
      count("notify_post(*", kGarmin) + count(kCommandFunction + "(*", kGarmin);
  if (passed > 1 || (passed == 0 && stock->passedOn == PassedOn::Once))
    return Violation{
        {}, fmt::format("{} came {} times", stock->call, passed), "expect-count 1 " + stock->call};
  if (stock->passedOn == PassedOn::OnceOrNever && passed == 1 && instead > 0)
    return Violation{
        {}, stock->call + " came, though it was taken over", "expect-no " + stock->call};
  return std::nullopt;
}

// Who hooked before us gets what reaches the platform and just before it; who hooked after us every
// call that the platform makes.
std::optional<Violation> Invariants::neighbours(const Words& words) {
  Device& device = session_.device();
  const std::string mark = "neighbour ";
  const auto& effects = session_.effects();
  // In the middle of a command a process may make way for one with another neighbour.
  for (std::size_t i = 0; i < effects.size() && !interrupted_; ++i) {
    const auto& effect = effects[i];
    const Process* process = device.process(effect.process);
    if (!process || process->neighbour != Neighbour::Before || !effect.call.starts_with(mark))
      continue;
    const std::string passed = effect.call.substr(mark.size());
    if (i + 1 == effects.size() || effects[i + 1].call != passed)
      return Violation{{}, passed + " stopped at the neighbour", "expect " + passed};
  }
  const auto stock = stockCall(words, device);
  const Process* process = stock && !interrupted_ ? answering(device, *stock) : nullptr;
  if (!process || process->neighbour == Neighbour::None) return std::nullopt;
  const std::string seen = mark + stock->call;
  const std::size_t wanted =
      process->neighbour == Neighbour::After ? 1 : count(stock->call, stock->process);
  const std::size_t times = count(seen, stock->process);
  if (times == wanted) return std::nullopt;
  return Violation{{},
                   fmt::format("{} came {} times instead of {}", seen, times, wanted),
                   fmt::format("expect-count {} {}", wanted, seen)};
}

// The platform answers YES to every command that reaches it, the library NO to what it swallows.
std::optional<Violation> Invariants::answered(const Words& words) {
  const auto answer = session_.answer();
  if (!answer || interrupted_) return std::nullopt;
  if (words[0] == "drag-lock-screen") {
    if (*answer) return std::nullopt;
    return Violation{{}, "the scroll view's YES became NO", "expect-result YES"};
  }
  const std::string& process = words.size() > 3 ? words[3] : kSpringBoard;
  const char* options = session_.device().state.tellingArguments ? "<NSDictionary>" : "nil";
  const std::size_t passed =
      count(fmt::format("{}({}, {})", kCommandFunction, words[1], options), process);
  const std::size_t any = count(kCommandFunction + "(*");
  const std::size_t expected = *answer ? 1 : 0;
  if (passed == expected && any == expected) return std::nullopt;
  return Violation{{},
                   fmt::format("{} was answered {} and reached it {} times", words[1],
                               *answer ? "YES" : "NO", any),
                   fmt::format("expect-count {} {}(*", expected, kCommandFunction)};
}

// ---- Settings

// As long as the file can be written, there is one greeting; whoever takes its marker out of the
// file gets another.
std::optional<Violation> Invariants::oneGreeting(const Words& words) {
  Device& device = session_.device();
  const std::string marker = "feo63OPBmERAd2000UpdRdCAND";
  if (wasAny(words, {"prefs", "prefs-file", "prefs-remove"}) &&
      (!settings_ || !settings_->contains(marker)))
    greeted_ = false;
  const std::size_t greetings = count(R"(-[UIAlertView show] "" "Thanks for updating*)") +
                                count(R"(-[UIAlertView show] "<3" *)");
  if (greetings > (greeted_ ? 0 : 1))
    return Violation{{}, "another greeting", "expect-no -[UIAlertView show]*"};
  if (greetings == 1 && !device.state.settingsReadOnly) greeted_ = true;
  return std::nullopt;
}

// What SpringBoard has read stays in the file until somebody else changes it.
std::optional<Violation> Invariants::settingsKept(const Words& words) {
  // In the middle of a write it is not yet written.
  if (interrupted_) announced_.clear();
  if (words[0] == "prefs") announced_.erase(words[1]);
  if (wasAny(words, {"prefs-file", "prefs-remove"})) announced_.clear();
  if (words[0] == "settings")
    for (const std::string& key : pageKeys()) announced_.erase(key);
  for (const auto& [key, value] : announced_) {
    const bool there = settings_ && settings_->contains(key);
    // The markers count by their presence, and their values are the library's to set.
    const bool marker = std::ranges::find(kMarkers, key) != kMarkers.end();
    if (there && (marker || settings_->at(key) == value)) continue;
    return Violation{
        {},
        fmt::format("{} was {} and is {}", key, value, there ? settings_->at(key) : "gone"),
        {}};
  }
  if (count("-[NSMutableDictionary initWithContentsOfFile:*", kSpringBoard) > 0)
    announced_ = settings_.value_or(std::map<std::string, std::string>{});
  return std::nullopt;
}

std::optional<Violation> Invariants::pageKept(const Words& words) {
  const auto lost = page_.lost(session_, words, settings_);
  if (!lost) return std::nullopt;
  return Violation{{}, *lost, {}};
}

}  // namespace sim::explore
