// What the reference of the language says of its commands: the tables of docs/scenarios.md, which
// the program carries with it. Nothing of a phone; leaves out the text around them.
#pragma once
#include <string>
#include <vector>

namespace sim::scenario {

struct ReferenceRow {
  std::vector<std::string> forms;  // "track none", "track ID playing|paused"
  std::string meaning;             // without the marks of Markdown
};
// In the reference's order.
const std::vector<ReferenceRow>& reference();

// Everything there is, a line a command; or what is said of one, a line a row. Empty for an unknown
// one.
std::string helpText();
std::string helpText(const std::string& command);

}  // namespace sim::scenario
