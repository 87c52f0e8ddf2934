// The settings page as data: groups of rows, in the order in which they stand, with their keys and
// their texts. English texts are what translations are looked up by (settings/texts/).
#pragma once
#include <span>

#include "loader/settings_file.hpp"

namespace corvalen::settings {

using platform::ConstantText;
using platform::kConstantText;

namespace key = preferences::key;
using Key = platform::NSString (*)();  // one of preferences::key

enum class RowKind : uint8_t {
  toggle,   // a switch
  chooser,  // leads to the list of apps, and shows the one that is chosen
  reset,    // a button, which asks before it does anything
};

struct Row {
  RowKind kind;
  ConstantText label;
  Key key;              // what it sets; none of a button's
  Key needs = nullptr;  // without that switch it has no effect: it is shown, but greyed
};

struct Group {
  ConstantText title;  // none: null
  ConstantText help;   // shown below the rows while Help is on; none: null
  std::span<const Row> rows;
};

inline constexpr Row kPlayer[] = {
    {RowKind::toggle, kConstantText<"Enabled">, key::masterSwitch},
    {RowKind::chooser, kConstantText<"Preferred Player">, key::preferredPlayer},
};
inline constexpr Row kStarting[] = {
    {RowKind::toggle, kConstantText<"Start Hidden When Locked">, key::startHiddenWhenLocked,
     key::masterSwitch},
    {RowKind::toggle, kConstantText<"Start Hidden When Unlocked">, key::startHiddenWhenUnlocked,
     key::masterSwitch},
    {RowKind::toggle, kConstantText<"Play a Sound">, key::playLaunchSound, key::masterSwitch},
};
inline constexpr Row kAutoPlay[] = {
    {RowKind::toggle, kConstantText<"Auto-Play">, key::autoPlay},
    {RowKind::toggle, kConstantText<"Not From the Home Screen">, key::noAutoPlayFromIcon,
     key::autoPlay},
};
inline constexpr Row kHeadphones[] = {
    {RowKind::toggle, kConstantText<"Play When Plugged In">, key::headphoneTrigger,
     key::masterSwitch},
};
inline constexpr Row kInsteadOfMusic[] = {
    {RowKind::chooser, kConstantText<"Music Replacement">, key::musicReplacement},
};
inline constexpr Row kReset[] = {
    {RowKind::reset, kConstantText<"Reset Settings">, nullptr},
};

inline constexpr Group kPage[] = {
    {kConstantText<"Player">,
     kConstantText<"While nothing is loaded, Play starts the player chosen here instead of Music. "
                   "With no player chosen, Play does nothing.">,
     kPlayer},
    {kConstantText<"Starting">,
     kConstantText<"A hidden start leaves you where you are. Without it the player opens, after "
                   "the passcode if the device is locked. The sound tells that a request was "
                   "taken.">,
     kStarting},
    {kConstantText<"Spotify and Podcasts">,
     kConstantText<"These players can begin to play by themselves after they were started. "
                   "Launched from their icon they can be left alone.">,
     kAutoPlay},
    {kConstantText<"Headphones">,
     kConstantText<"Plugging in headphones resumes what is loaded, or starts the player.">,
     kHeadphones},
    {kConstantText<"Instead of Music">,
     kConstantText<"This app opens wherever Music would, while Music holds the track. Quitting it "
                   "in the app switcher ends Music too.">,
     kInsteadOfMusic},
    {nullptr, nullptr, kReset},
};

// ---- The page's other texts
namespace text {
// The entry's name in the Settings app. The greeting opens the page by it.
inline constexpr ConstantText title = kConstantText<"Corvalen Pro">;
inline constexpr ConstantText help = kConstantText<"Help">;
inline constexpr ConstantText hideHelp = kConstantText<"Hide Help">;
// Below the last row, a line each.
inline constexpr ConstantText noRespring =
    kConstantText<"Changes take effect at once. No respring is needed.">;
inline constexpr ConstantText appStore =
    kConstantText<"Players must be installed from the App Store.">;
inline constexpr ConstantText version = kConstantText<"Version %@">;
// In a chooser.
inline constexpr ConstantText none = kConstantText<"None">;
// Where AppList does not answer, below the rows that need it.
inline constexpr ConstantText noAppList = kConstantText<
    "AppList is missing or does not answer, so that no app can be chosen. Install it "
    "from Cydia.">;
// Alerts.
inline constexpr ConstantText resetQuestion =
    kConstantText<"All switches go off, and no app is chosen any more.">;
inline constexpr ConstantText reset = kConstantText<"Reset">;
inline constexpr ConstantText cancel = kConstantText<"Cancel">;
inline constexpr ConstantText notSaved =
    kConstantText<"The setting could not be saved. It is as it was.">;
inline constexpr ConstantText notRead = kConstantText<
    "The settings file cannot be read, so nothing was changed. Reset Settings writes "
    "a new one.">;
inline constexpr ConstantText ok = kConstantText<"OK">;
}  // namespace text

// All of the above that translators are given.
inline constexpr ConstantText kOtherTexts[] = {
    text::help,    text::hideHelp, text::noRespring, text::appStore,
    text::version, text::none,     text::noAppList,  text::resetQuestion,
    text::reset,   text::cancel,   text::notSaved,   text::notRead,
    text::ok,
};

}  // namespace corvalen::settings
