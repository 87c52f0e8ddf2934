#include "sim/scenario/completion.hpp"

#include <algorithm>
#include <sstream>

#include "sim/platform/device_actions.hpp"
#include "sim/scenario/reference.hpp"
#include "sim/scenario/script.hpp"
#include "sim/scenario/words.hpp"
#include "sim/settings/settings_app.hpp"

namespace sim::scenario {

namespace {

std::vector<std::string> split(const std::string& text, char at) {
  std::vector<std::string> parts;
  std::istringstream in(text);
  for (std::string part; std::getline(in, part, at);)
    if (!part.empty()) parts.push_back(part);
  return parts;
}

std::vector<std::string> labels(Device& device) {
  std::vector<std::string> all;
  if (!device.process(kSettings)) return all;
  try {
    for (const ShownGroup& group : shownSettings(device).groups)
      for (const ShownRow& row : group.rows) all.push_back(quoted(row.label));
  } catch (const ActionError&) {
    all.clear();  // no page
  }
  return all;
}

// What a word of the reference stands for.
std::vector<std::string> meant(const std::string& word, Device& device) {
  std::vector<std::string> all;
  for (const std::string& choice : split(word, '|')) {
    if (choice == "\"LABEL\"") {
      for (const std::string& label : labels(device)) all.push_back(label);
    } else if (choice == "ID") {
      for (const App& app : device.state.apps) all.push_back(app.identifier);
    } else if (std::ranges::none_of(choice, [](char c) { return c >= 'A' && c <= 'Z'; })) {
      all.push_back(choice);
    }
  }
  return all;
}

// A text in quotes is one word. Within one that is not closed nothing is known.
std::optional<std::vector<std::string>> wordsOf(const std::string& before) {
  try {
    std::vector<std::string> all;
    for (const Word& word : splitWords(before)) all.push_back(word.text);
    return all;
  } catch (const SyntaxError&) {
    return std::nullopt;
  }
}

}  // namespace

std::vector<std::string> completions(const std::string& before, Device& device) {
  const auto words = wordsOf(before);
  if (!words) return {};
  const auto& typed = *words;
  std::vector<std::string> all;
  if (typed.empty()) {
    all = commandNames();
    for (const char* own : {"help", "quit", "undo"}) all.emplace_back(own);
  } else if (typed[0] == "help") {
    all = commandNames();
  }
  for (const ReferenceRow& row : reference())
    for (const std::string& form : row.forms) {
      const auto parts = split(form, ' ');
      if (typed.empty() || parts.size() <= typed.size() || parts[0] != typed[0]) continue;
      // A fixed word must have been typed as it is: settings set, settings choose.
      const bool fits = parts.size() < 3 || typed.size() < 2 || parts[1] == typed[1] ||
                        parts[1].find_first_of("ABCDEFGHIJKLMNOPQRSTUVWXYZ|") != std::string::npos;
      if (!fits) continue;
      for (const std::string& word : meant(parts[typed.size()], device)) all.push_back(word);
    }
  std::ranges::sort(all);
  all.erase(std::unique(all.begin(), all.end()), all.end());
  return all;
}

}  // namespace sim::scenario
