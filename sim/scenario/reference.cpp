#include "sim/scenario/reference.hpp"

#include <fmt/format.h>

#include <set>
#include <sstream>

namespace sim::scenario {

namespace {

constexpr const char* kDocument =
#include "scenario_reference.inc"
    ;

// The cells of a row of a table; a | with a backslash before it stands for itself.
std::vector<std::string> cells(const std::string& row) {
  std::vector<std::string> all;
  std::string cell;
  for (std::size_t i = 1; i < row.size(); ++i) {
    if (row[i] == '\\' && i + 1 < row.size() && row[i + 1] == '|')
      cell += row[++i];
    else if (row[i] == '|')
      all.push_back(std::exchange(cell, {}));
    else
      cell += row[i];
  }
  return all;
}

// What stands between pairs of backquotes.
std::vector<std::string> quotedIn(const std::string& cell) {
  std::vector<std::string> all;
  std::istringstream parts(cell);
  std::string part;
  for (bool inside = false; std::getline(parts, part, '`'); inside = !inside)
    if (inside) all.push_back(part);
  return all;
}

// Links become their texts, and code is not marked.
std::string plain(const std::string& cell) {
  std::string text;
  for (std::size_t i = 0; i < cell.size(); ++i) {
    if (cell[i] == '`' || cell[i] == '[') continue;
    if (cell[i] == ']' && i + 1 < cell.size() && cell[i + 1] == '(')
      i = cell.find(')', i);
    else
      text += cell[i];
    if (i == std::string::npos) break;
  }
  const std::size_t first = text.find_first_not_of(' ');
  if (first == std::string::npos) return {};
  return text.substr(first, text.find_last_not_of(' ') - first + 1);
}

std::string firstWord(const std::string& form) { return form.substr(0, form.find(' ')); }

}  // namespace

const std::vector<ReferenceRow>& reference() {
  static const auto rows = [] {
    std::vector<ReferenceRow> all;
    std::istringstream document(kDocument);
    for (std::string line; std::getline(document, line);) {
      if (!line.starts_with("| `")) continue;
      const auto row = cells(line);
      if (row.size() >= 2) all.push_back({quotedIn(row[0]), plain(row[1])});
    }
    return all;
  }();
  return rows;
}

std::string helpText() {
  std::string text;
  std::set<std::string> told;
  for (const ReferenceRow& row : reference())
    for (const std::string& form : row.forms) {
      const std::string name = firstWord(form);
      if (name != "in" && told.insert(name).second) text += (text.empty() ? "" : " ") + name;
    }
  return text + "\nMore: help COMMAND. Also: undo, quit.\n";
}

std::string helpText(const std::string& command) {
  std::string text;
  for (const ReferenceRow& row : reference()) {
    std::string forms;
    bool isOne = false;
    for (const std::string& form : row.forms) {
      isOne |= firstWord(form) == command;
      forms += (forms.empty() ? "" : ", ") + form;
    }
    if (isOne) text += fmt::format("{}\n    {}\n", forms, row.meaning);
  }
  return text;
}

}  // namespace sim::scenario
