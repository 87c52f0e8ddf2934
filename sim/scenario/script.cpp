#include "sim/scenario/script.hpp"

#include <algorithm>
#include <charconv>
#include <sstream>

#include "sim/scenario/commands.hpp"

namespace sim::scenario {

namespace {

std::string trimmed(const std::string& text) {
  const auto first = text.find_first_not_of(" \t\r");
  if (first == std::string::npos) return {};
  return text.substr(first, text.find_last_not_of(" \t\r") - first + 1);
}

// Takes the first word off `rest`.
std::string takeWord(std::string& rest) {
  rest = trimmed(rest);
  const auto end = rest.find_first_of(" \t");
  const std::string word = rest.substr(0, end);
  rest = end == std::string::npos ? std::string() : trimmed(rest.substr(end));
  return word;
}

std::string takeCall(const std::string& rest, const std::string& name) {
  if (rest.empty()) throw SyntaxError(name + ": a call is missing");
  return rest;
}

// An expectation's call is the rest of the line as it stands: a # in it belongs to it.
std::optional<Expectation> parseExpectation(const std::string& line) {
  std::string rest = line;
  const std::string name = takeWord(rest);
  Expectation expectation{Expectation::Kind::Next, trimmed(line), {}, {}, false, 0};
  if (name == "expect") {
    expectation.call = takeCall(rest, name);
  } else if (name == "expect-in") {
    expectation.process = takeWord(rest);
    if (expectation.process.empty()) throw SyntaxError("expect-in: a process is missing");
    expectation.call = takeCall(rest, name);
  } else if (name == "expect-no") {
    expectation.kind = Expectation::Kind::Never;
    expectation.call = takeCall(rest, name);
  } else if (name == "expect-count") {
    expectation.kind = Expectation::Kind::Count;
    const std::string count = takeWord(rest);
    const auto [end, error] =
        std::from_chars(count.data(), count.data() + count.size(), expectation.count);
    if (error != std::errc() || end != count.data() + count.size())
      throw SyntaxError("expect-count: a whole number expected, not " + count);
    expectation.call = takeCall(rest, name);
  } else if (name == "expect-result") {
    expectation.kind = Expectation::Kind::Result;
    Arguments words(name, splitWords(rest));
    expectation.result = words.oneOf({"YES", "NO"}) == 0;
    words.finish();
  } else if (name == "expect-nothing") {
    expectation.kind = Expectation::Kind::Nothing;
    Arguments(name, splitWords(rest)).finish();
  } else {
    return std::nullopt;
  }
  return expectation;
}

const CommandRow* findRow(const std::string& name) {
  for (const auto* rows : {&setUpCommands(), &eventCommands()})
    for (const CommandRow& row : *rows)
      if (row.name == name) return &row;
  return nullptr;
}

}  // namespace

std::optional<std::variant<Command, Expectation>> parseLine(const std::string& line) {
  std::string rest = line;
  const std::string first = takeWord(rest);
  if (first.starts_with("expect")) {
    if (auto expectation = parseExpectation(line)) return *expectation;
  }
  const std::vector<Word> words = splitWords(line);
  if (words.empty()) return std::nullopt;
  const CommandRow* row = words[0].quoted ? nullptr : findRow(words[0].text);
  if (!row) throw SyntaxError("unknown command " + words[0].text);
  Arguments arguments(row->name, {words.begin() + 1, words.end()});
  Command command{withoutComment(line), row->read(arguments)};
  arguments.finish();
  return command;
}

Script parseScript(const std::string& file, const std::string& text) {
  Script script{file, {}};
  std::istringstream in(text);
  std::string line;
  for (std::size_t number = 1; std::getline(in, line); ++number) {
    try {
      if (auto content = parseLine(line)) script.lines.push_back({number, std::move(*content)});
    } catch (const SyntaxError& error) {
      throw ScenarioError(file, number, error.what());
    }
  }
  return script;
}

std::vector<std::string> commandNames() {
  std::vector<std::string> names;
  for (const auto* rows : {&setUpCommands(), &eventCommands()})
    for (const CommandRow& row : *rows) names.emplace_back(row.name);
  for (const char* name :
       {"expect", "expect-in", "expect-no", "expect-result", "expect-nothing", "expect-count"})
    names.emplace_back(name);
  return names;
}

bool matches(const std::string& pattern, const std::string& call) {
  std::size_t p = 0;
  std::size_t c = 0;
  std::size_t star = std::string::npos;  // the last * met, and where it began to match
  std::size_t from = 0;
  while (c < call.size()) {
    if (p < pattern.size() && pattern[p] == '*') {
      star = p++;
      from = c;
    } else if (p < pattern.size() && pattern[p] == call[c]) {
      ++p;
      ++c;
    } else if (star != std::string::npos) {
      p = star + 1;
      c = ++from;
    } else {
      return false;
    }
  }
  while (p < pattern.size() && pattern[p] == '*') ++p;
  return p == pattern.size();
}

}  // namespace sim::scenario
