// The settings page's rows, made from its description as the settings file and AppList are now.
#pragma once
#include "settings/bundle.hpp"
#include "settings/page.hpp"

namespace corvalen::settings {

// The messages by which rows ask and tell the page.
struct PageSelectors {
  SEL get;    // what a row shows
  SEL set;    // a switch was moved
  SEL reset;  // the button was tapped
};

// Every group and row, in order. Owned by the caller.
platform::Retained<platform::NSMutableArray> makeSpecifiers(platform::Object page,
                                                            const PageSelectors& selectors,
                                                            bool withHelp);

// What a row shows: a switch's state, the name of the app that is chosen. As of when the rows were
// made, or since. Borrowed.
platform::Object shownValue(platform::PSSpecifier row);
void setShownValue(platform::PSSpecifier row, platform::Object value);

// The key of the setting that a row is for; nil of others. Borrowed.
platform::NSString settingOf(platform::PSSpecifier row);
// Whether rows are greyed by that setting.
bool isNeededByOthers(platform::NSString setting);

}  // namespace corvalen::settings
