// A scenario as it was read: its commands with their arguments checked, and its expectations.
// Nothing of a phone; leaves out loops, variables and conditions: a scenario is a story.
#pragma once
#include <functional>
#include <string>
#include <variant>
#include <vector>

#include "sim/core/device.hpp"

namespace sim::scenario {

// A mistake in a scenario with its place: "FILE:LINE: message".
class ScenarioError : public std::runtime_error {
 public:
  ScenarioError(const std::string& file, std::size_t line, const std::string& message)
      : std::runtime_error(file + ":" + std::to_string(line) + ": " + message) {}
};

// Something that changes the device, or happens to it. Answers what the caller got, if it asks.
struct Command {
  std::string echo;  // as it was written
  std::function<std::optional<bool>(Device&)> run;
};

struct Expectation {
  enum class Kind : std::uint8_t { Next, Never, Result, Nothing, Count } kind;
  std::string written;  // as it was written
  std::string process;  // only lines of this one; empty: any
  std::string call;     // with * as wildcards
  bool result = false;
  std::size_t count = 0;
};

struct Line {
  std::size_t number = 0;
  std::variant<Command, Expectation> content;
};

struct Script {
  std::string file;
  std::vector<Line> lines;
};

// Reads a whole scenario; nothing runs yet. Throws ScenarioError.
Script parseScript(const std::string& file, const std::string& text);

// Reads one line; nothing for an empty one. Throws SyntaxError.
std::optional<std::variant<Command, Expectation>> parseLine(const std::string& line);

// Every command's first word, in order, for completion.
std::vector<std::string> commandNames();

// Whether the call matches a pattern in which * stands for any run of characters.
bool matches(const std::string& pattern, const std::string& call);

}  // namespace sim::scenario
