#include "settings/settings_page.hpp"

#include "settings/app_chooser.hpp"
#include "settings/bundle.hpp"
#include "settings/failure.hpp"
#include "settings/specifiers.hpp"
#include "settings/store.hpp"

namespace corvalen::settings {

using namespace platform;

namespace {

constexpr Literal kClass = "CVPSettingsController";

// Whether explanations are shown; for as long as the Settings app lives.
constinit bool helpIsShown = false;

// ---- Rows

id specifiers(id self, SEL) {
  const PageSelectors selectors{selector<"readPreferenceValue:">(),
                                selector<"setPreferenceValue:specifier:">(),
                                selector<"askForReset:">()};
  return keptSpecifiers(self, [&] { return makeSpecifiers(view(self), selectors, helpIsShown); });
}

id readPreferenceValue(id, SEL, id row) { return shownValue(view<PSSpecifier>(row)).raw; }

// A switch that could not be saved goes back; others may have become useful, or useless.
void setPreferenceValue(id self, SEL, id value, id row) {
  const auto moved = view<PSSpecifier>(row);
  const Outcome outcome = change(settingOf(moved), view(value));
  if (outcome == Outcome::saved) setShownValue(moved, view(value));
  tell(outcome);
  if (outcome != Outcome::saved || isNeededByOthers(settingOf(moved)))
    view<PSListController>(self).reloadSpecifiers();
}

// ---- Help

void showHelpButton(id self) {
  const NSString title = localized(helpIsShown ? text::hideHelp : text::help);
  const auto button = UIBarButtonItem::make(title, view(self), selector<"toggleHelp:">());
  view<PSListController>(self).navigationItem().setRightBarButtonItem(button.get());
}

void toggleHelp(id self, SEL, id) {
  helpIsShown = !helpIsShown;
  showHelpButton(self);
  view<PSListController>(self).reloadSpecifiers();
}

// ---- Reset

constexpr char kPageOfQuestion = 0;  // by its address

// The class itself answers the alert: on some versions the superclass of its objects does, for
// alerts of its own.
// docs/decisions.md: The class answers the question
void askForReset(id self, SEL, id) {
  const NSString title = localized(kReset[0].label);
  const NSString message = localized(text::resetQuestion);
  const NSString cancel = localized(text::cancel);
  const NSString reset = localized(text::reset);
  const ClassObject cls = classNamed<kClass>();
  const auto question = UIAlertView::make(UIAlertView::cls(), title, message, cls, cancel, reset);
  if (!question) return;
  objc_setAssociatedObject(question.get().raw, &kPageOfQuestion, self,
                           static_cast<uintptr_t>(Association::retain));
  question->show();
}

void resetAnswered(id, SEL, id question, NSInteger button) {
  if (button == view<UIAlertView>(question).cancelButtonIndex()) return;
  tell(resetAll());
  const auto page = view<PSListController>(objc_getAssociatedObject(question, &kPageOfQuestion));
  page.reloadSpecifiers();
}

// ---- The page's life

void viewDidLoad(id self, SEL) {
  sendToListController<"viewDidLoad">(self);
  showHelpButton(self);
}

// Also on the way back from a chooser: what it changed is to be seen.
void viewWillAppear(id self, SEL, BOOL animated) {
  sendToListController<"viewWillAppear:">(self, animated);
  view<PSListController>(self).reloadSpecifiers();
}

// Kept and shown again later, pages were blank on older versions.
// docs/decisions.md: Pages are not kept
BOOL canBeShownFromSuspendedState(id, SEL) { return NO; }

id bundle(id, SEL) { return ownBundle().raw; }

constexpr AddedMethod kMethods[] = {
    addedMethod<&specifiers, "specifiers">(),
    addedMethod<&readPreferenceValue, "readPreferenceValue:">(),
    addedMethod<&setPreferenceValue, "setPreferenceValue:specifier:">(),
    addedMethod<&toggleHelp, "toggleHelp:">(),
    addedMethod<&askForReset, "askForReset:">(),
    addedMethod<&viewDidLoad, "viewDidLoad">(),
    addedMethod<&viewWillAppear, "viewWillAppear:">(),
    addedMethod<&canBeShownFromSuspendedState, "canBeShownFromSuspendedState">(),
    addedMethod<&bundle, "bundle">(),
};
constexpr AddedMethod kClassMethods[] = {
    addedMethod<&resetAnswered, "alertView:clickedButtonAtIndex:">(),
};

}  // namespace

void registerSettingsPage() {
  const Class cls = objc_allocateClassPair(PSListController::cls().cls(), kText<kClass>.text, 0);
  if (!cls) return;
  addMethods<kMethods>(cls);
  addMethods<kClassMethods>(metaclassOf(cls));
  objc_registerClassPair(cls);
}

}  // namespace corvalen::settings
