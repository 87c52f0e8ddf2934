// The Settings app and what a finger does in it. Stands in for PreferenceLoader, which puts this
// product's row into its first page, and for the page behind it; leaves out every other row.
// Everything is done by what is seen: rows by their label, in the user's language.
#pragma once
#include "sim/settings/navigation.hpp"

namespace sim {

// Each throws ActionError where there is nothing to be touched as described.
void openSettings(Device& device);   // the app, and the page if the app has a row for it
void closeSettings(Device& device);  // the app ends
// A row that is greyed takes no finger; a switch that stands right is left alone.
void moveSwitch(Device& device, const std::string& label, bool on);
// Opens the list, taps the app (or none), and comes back. The app must be listed.
void chooseApp(Device& device, const std::string& label, const std::optional<std::string>& app);
void tapHelp(Device& device);
enum class Answer : std::uint8_t { Cancel, Confirm };
void resetSettings(Device& device, Answer answer);

// ---- For who looks at it

struct ShownRow {
  std::string label;
  std::string value;  // of a switch "YES" or "NO"; empty where nothing is shown
  Cell cell;
  bool enabled;
  bool checked;
  bool hasIcon;
};
struct ShownGroup {
  std::string title;
  std::string footer;
  std::vector<ShownRow> rows;
};
struct ShownPage {
  std::string title;
  std::string button;  // at the top right
  std::vector<ShownGroup> groups;
};
// The page that is uppermost, drawn. ActionError if none is open.
ShownPage shownSettings(Device& device);

// Opens the list behind a row and leaves it open, for the three below.
void openList(Device& device, const std::string& label);
void searchInList(Device& device, const std::string& text);
void tapInList(Device& device, const std::string& app);
void backFromList(Device& device);

}  // namespace sim
