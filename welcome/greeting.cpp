#include "welcome/greeting.hpp"

#include "loader/preferences.hpp"
#include "platform/block.hpp"
#include "platform/system_services.hpp"
#include "platform/uikit.hpp"
#include "springboard/launcher.hpp"
#include "ui/block_alert.hpp"
#include "welcome/follow_handler.hpp"

namespace corvalen::welcome {

using namespace platform;

namespace key = preferences::key;

namespace {

bool networkIsReachable() {
  uint32_t flags = 0;
  return reachabilityFlags(SocketAddress{}, &flags) && isReachable(flags);
}

// docs/decisions.md: An empty title
void showUpdated() {
  auto response = block<void(id, NSInteger)>([](id alert, NSInteger) {
    view<UIAlertView>(alert).cancelButtonIndex();  // whatever was pressed, there is nothing to do
  });
  ui::showAlert(""_ns, "Thanks for updating Corvalen Pro!"_ns, "<3"_ns, NSArray{},
                response.object());
}

// The alert keeps its delegate, the handler, alive: nobody else does.
void showWelcome() {
  const Retained<Object> handler = makeFollowHandler();
  const auto alert = UIAlertView::make(
      UIAlertView::cls(), "<3"_ns,
      "Thanks for purchasing Corvalen Pro.  People like you make this community great :). Head "
      "over to the Settings panel to configure options.\n\nIf you're not sure what an option does, "
      "please make use of the Help toggle provided in the top-right corner of the panel.\n\nP.S. "
      "If you haven't already, you might be interested in following me on Twitter for the "
      "occasional tweak update or giveaway. If so, just hit the button below!"_ns,
      handler.get(), "No thanks!"_ns, "I'd love to!"_ns);
  alert->setTag(kWelcomeAlertTag);
  holdHandler(alert.get(), handler.get());
  alert->show();
}

void openSettingsPane() {
  const NSString pane =
      "Corvalen Pro"_ns.stringByAddingPercentEscapesUsingEncoding(kUtf8StringEncoding);
  // docs/decisions.md: Answers that are missing
  if (!pane) return;
  UIApplication::sharedApplication().openURL(
      NSURL::URLWithString("prefs:root="_ns.stringByAppendingString(pane)));
}

void showSettingsHint() {
  auto response = block<void(id, NSInteger)>([](id pressed, NSInteger button) {
    const auto alert = view<UIAlertView>(pressed);
    if (button == alert.cancelButtonIndex()) return;
    if (alert.buttonTitleAtIndex(button).isEqualToString("Go to Settings"_ns)) openSettingsPane();
  });
  ui::showAlert(
      "<3"_ns,
      "Thanks for purchasing Corvalen Pro. People like you make this community great :).\n\nHead "
      "over to the Settings panel to configure options. If you're not sure what an option does, "
      "please make use of the Help toggle provided in the top-right corner of the panel."_ns,
      "Not right now"_ns, NSArray::arrayWithObject("Go to Settings"_ns), response.object());
}

// The marker is written before anything is shown: a crash or a dismissed alert brings no second
// greeting.
// docs/decisions.md: The marker comes before the alert
void greet() {
  if (preferences::isPresent(key::greeted())) return;
  // docs/decisions.md: The greeting's marker is written with everything
  preferences::preferencesDictionary.setValueForKey(NSNumber::numberWithBool(true), key::greeted());
  preferences::preferencesDictionary.writeToFile(preferences::path(), true);
  if (preferences::isPresent(key::welcomeAnswered()))
    showUpdated();
  else if (networkIsReachable())
    showWelcome();
  else
    showSettingsHint();
}

}  // namespace

bool isReachable(uint32_t flags) {
  if (!(flags & kReachable)) return false;
  if (!(flags & kConnectionRequired)) return true;
  const bool connectsByItself = (flags & (kConnectionOnTraffic | kConnectionOnDemand)) != 0;
  if (connectsByItself && !(flags & kInterventionRequired)) return true;
  return (flags & kCellular) != 0;
}

ResultWord FinishUIUnlock::replacement(id self, SEL name, int source) {
  const ResultWord result = previous(self, name, source);
  greet();
  springboard::completePendingLaunch();
  return result;
}

}  // namespace corvalen::welcome
