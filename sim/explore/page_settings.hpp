// What the user has set on the settings page: it must stay in the file until somebody sets it
// otherwise, whatever cfprefsd, SpringBoard and the Settings app do meanwhile. Stands in for the
// user's memory; leaves out what was set elsewhere.
#pragma once
#include <map>
#include <optional>
#include <string>
#include <vector>

#include "sim/scenario/runner.hpp"

namespace sim::explore {

class PageSettings {
 public:
  using Settings = std::optional<std::map<std::string, std::string>>;

  // To be called after each command: what it has set, or taken away from the page's care, and what
  // the file holds now. Says what is lost, if anything is.
  std::optional<std::string> lost(const scenario::Session& session,
                                  const std::vector<std::string>& words, const Settings& file);

  // Somebody else than a command has changed the file.
  void forget() { made_.clear(); }

 private:
  void noteChange(const std::vector<std::string>& words);

  std::map<std::string, std::string> made_;  // by key; empty for one that is to be absent
};

// The labels of the page's switches, or of its choosers.
std::vector<std::string> switchLabels();
std::vector<std::string> chooserLabels();
// The keys of all rows.
std::vector<std::string> pageKeys();

}  // namespace sim::explore
