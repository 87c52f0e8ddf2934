#include "sim/explore/draw_page.hpp"

#include "sim/explore/names.hpp"
#include "sim/explore/page_settings.hpp"

namespace sim::explore {

namespace {

std::string change(Random& random) {
  static const auto switches = switchLabels();
  static const auto choosers = chooserLabels();
  const std::size_t kind = random.below(20);
  if (kind < 11)
    return "settings set \"" + random.of(switches) + "\" " + (random.chance(60) ? "yes" : "no");
  if (kind < 18)
    return "settings choose \"" + random.of(choosers) + "\" " +
           (random.chance(20) ? "none" : random.of(kApps));
  return kind == 18 ? "settings help" : "settings reset";
}

std::string happening(Random& random) {
  static const std::vector<std::string> all = {"advance 1",
                                               "advance 4",
                                               "advance 6",
                                               "cfprefsd restart",
                                               "settings close",
                                               "settings open",
                                               "boot",
                                               "end com.apple.Preferences",
                                               "announce",
                                               "unlock",
                                               "prefs-readonly yes",
                                               "prefs-readonly no",
                                               "language de",
                                               "language en"};
  return random.of(all);
}

}  // namespace

std::string drawPageCommand(Random& random) {
  return random.chance(60) ? change(random) : happening(random);
}

std::vector<std::string> drawPageVisit(Random& random) {
  std::vector<std::string> lines = {"settings open"};
  for (std::size_t i = 1 + random.below(3); i > 0; --i) {
    lines.push_back(change(random));
    if (random.chance(50)) lines.push_back(happening(random));
  }
  lines.emplace_back("settings open");
  lines.push_back(change(random));
  if (random.chance(70)) lines.emplace_back("settings close");
  return lines;
}

}  // namespace sim::explore
