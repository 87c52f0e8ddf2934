// What must hold whatever happens, checked after every command.
#pragma once
#include <map>
#include <optional>
#include <string>
#include <vector>

#include "sim/scenario/runner.hpp"

namespace sim::explore {

// A broken invariant.
struct Violation {
  std::string rule;         // which one, in a few words; the same however it was broken
  std::string what;         // what was seen
  std::string expectation;  // the line for a scenario that shows it; empty if there is none
};

// Watches one session from its start. The library is trusted with nothing: everything is concluded
// from commands, effects and the settings file.
class Invariants {
 public:
  explicit Invariants(scenario::Session& session) : session_(session) {}

  // To be called after each command, as it was written.
  std::optional<Violation> check(const std::string& command);

 private:
  using Words = std::vector<std::string>;
  using Check = std::optional<Violation> (Invariants::*)(const Words&);

  std::optional<Violation> noCrash(const Words& words);
  std::optional<Violation> noLeak(const Words& words);
  std::optional<Violation> fewTimers(const Words& words);
  std::optional<Violation> knownPosts(const Words& words);
  std::optional<Violation> knownCommandLines(const Words& words);
  std::optional<Violation> onlyListedApps(const Words& words);
  std::optional<Violation> passedOnOnce(const Words& words);
  std::optional<Violation> answered(const Words& words);
  std::optional<Violation> oneGreeting(const Words& words);
  std::optional<Violation> settingsKept(const Words& words);

  // Effects of the last command with that call, with * as wildcards, in a process or in any.
  std::size_t count(const std::string& call, const std::string& process = {}) const;

  scenario::Session& session_;
  std::map<std::string, std::string> announced_;  // settings that SpringBoard has read
  bool greeted_ = false;                          // and the file says so
};

enum class PassedOn : std::uint8_t { Once, OnceOrNever };

// How a command's own call shows in the trace when it reaches the platform, with * where the
// library may change it.
struct StockCall {
  std::string cls;  // without which nothing is sent
  std::string call;
  PassedOn passedOn = PassedOn::Once;
  std::string process = kSpringBoard;
};
// Nothing if the command makes none.
std::optional<StockCall> stockCall(const std::vector<std::string>& words, double version);

}  // namespace sim::explore
