// What must hold whatever happens, checked after every command. Stands in for what a user of a
// phone would complain about; leaves out whether a rule was followed, which tests/rules compares.
#pragma once
#include <map>
#include <optional>
#include <set>
#include <string>
#include <vector>

#include "sim/explore/page_settings.hpp"
#include "sim/scenario/runner.hpp"

namespace sim::explore {

// The invariants, in a few words.
namespace rule {
inline constexpr const char* kNoCrash = "no process crashes";
inline constexpr const char* kNoLeak = "no reference is lost";
inline constexpr const char* kFewTimers = "timers do not pile up";
inline constexpr const char* kKnownPosts = "only known names are posted";
inline constexpr const char* kKnownCommandLines = "only known command lines are run";
inline constexpr const char* kOnlyListedApps = "only listed apps are launched";
inline constexpr const char* kPassedOnOnce =
    "what is passed on reaches the platform once, what is taken over never";
inline constexpr const char* kNeighbours = "another extension gets what it would without us";
inline constexpr const char* kAnswered = "a command reaches the platform once if it is answered";
inline constexpr const char* kOneGreeting = "the user is greeted once";
inline constexpr const char* kSettingsKept = "no announced setting is lost";
inline constexpr const char* kPageKept = "no setting that was made is lost";
}  // namespace rule

// A broken invariant.
struct Violation {
  std::string rule;         // which one; the same however it was broken
  std::string what;         // what was seen
  std::string expectation;  // the line for a scenario that shows it; empty if there is none
};

// Watches one session from its start. The library is trusted with nothing: everything is concluded
// from commands, effects and the settings file.
class Invariants {
 public:
  // Rules that are `excused` may be broken.
  explicit Invariants(scenario::Session& session, std::set<std::string> excused = {})
      : session_(session), excused_(std::move(excused)) {}

  // Somebody else than a command has changed the settings file.
  void settingsChangedOutside();
  // To be called after each command, as it was written.
  std::optional<Violation> check(const std::string& command);

 private:
  using Words = std::vector<std::string>;

  void noteOutdated();
  std::optional<Violation> noCrash(const Words& words);
  std::optional<Violation> noLeak(const Words& words);
  std::optional<Violation> fewTimers(const Words& words);
  std::optional<Violation> knownPosts(const Words& words);
  std::optional<Violation> knownCommandLines(const Words& words);
  std::optional<Violation> onlyListedApps(const Words& words);
  std::optional<Violation> passedOnOnce(const Words& words);
  std::optional<Violation> neighbours(const Words& words);
  std::optional<Violation> answered(const Words& words);
  std::optional<Violation> oneGreeting(const Words& words);
  std::optional<Violation> settingsKept(const Words& words);
  std::optional<Violation> pageKept(const Words& words);

  // Effects of the last command with that call, with * as wildcards, in a process or in any.
  std::size_t count(const std::string& call, const std::string& process = {}) const;

  scenario::Session& session_;
  std::set<std::string> excused_;
  std::optional<std::map<std::string, std::string>> settings_;  // what the file holds now
  std::map<std::string, std::string> announced_;  // settings that SpringBoard has read
  std::uint64_t fileChanges_ = 0;                 // met so far
  PageSettings page_;
  std::size_t overwritten_ = 0;     // by cfprefsd, so far
  bool greeted_ = false;            // and the file says so
  std::size_t interruptions_ = 0;   // met so far: a command with one is more than its own words say
  bool interrupted_ = false;        // the last command was
  std::set<std::string> outdated_;  // processes whose classes are not the version's any more
};

enum class PassedOn : std::uint8_t { Once, OnceOrNever };

// How a command's own call shows in the trace when it reaches the platform, with * where the
// library may change it.
struct StockCall {
  std::string cls;       // without which nothing is sent
  std::string selector;  // nor if that is not answered
  std::string call;
  PassedOn passedOn = PassedOn::Once;
  std::string process = kSpringBoard;
};
// Nothing if the command makes none.
std::optional<StockCall> stockCall(const std::vector<std::string>& words, Device& device);

}  // namespace sim::explore
