#include "welcome/follow_handler.hpp"

#include "loader/preferences.hpp"
#include "loader/signals.hpp"
#include "platform/accounts.hpp"
#include "platform/added_method.hpp"
#include "platform/main_queue.hpp"

namespace corvalen::welcome {

using namespace platform;

namespace {

constexpr Literal kHandlerClass = "CVPTWHandler";
constexpr NSInteger kFollowButton = 1;       // of the welcome alert
constexpr NSInteger kAllAccountsButton = 0;  // of the account choice; the accounts follow

// The accounts that an account choice offers, in the order of its buttons.
const void* accountsKey() { return selector<"description">(); }

void associate(UIAlertView alert, const void* key, Object value) {
  if (!alert) return;  // where UIKit is missing; the runtime would not take it
  objc_setAssociatedObject(alert.raw, key, value.raw, static_cast<uintptr_t>(Association::retain));
}

// Notes in the settings file that the welcome was accepted. Through the file: only the reload
// brings it into memory. Without a readable file nothing is written.
// docs/decisions.md: Accepting goes through the file
void markWelcomeAnswered() {
  {
    const auto settings = preferences::read();
    settings->setValueForKey(NSNumber::numberWithBool(true), preferences::key::welcomeAnswered());
    settings->writeToFile(preferences::path(), true);
  }
  notify_post(signals::kSettingsChanged);
}

void showThanks(NSString title, NSString message) {
  UIAlertView::make(UIAlertView::cls(), title, message, Object{}, "You're welcome!"_ns, NSString{})
      ->show();
}

void showAccountChoice(Object handler, NSArray accounts) {
  const auto alert = UIAlertView::make(UIAlertView::cls(), NSString{},
                                       "It looks like you have multiple Twitter accounts on this "
                                       "device. Which one would you like to use?"_ns,
                                       handler, "All of them!"_ns, NSString{});
  enumerate(accounts,
            [&alert](Object account) { alert->addButton(as<ACAccount>(account).username()); });
  alert->setTag(kAccountChoiceAlertTag);
  holdHandler(alert.get(), handler);
  associate(alert.get(), accountsKey(), accounts);
  alert->show();
}

// Access was granted. Runs on the framework's thread: every alert goes to the main queue.
void followFrom(NSArray accounts, const Retained<Object>& handler) {
  const NSUInteger count = accounts.count();
  if (count == 1) {
    send<"followWithAccount:">(handler.get(), accounts.objectAtIndex(0));
    onMainQueue([] {
      showThanks("Done!"_ns,
                 "\nYou're awesome <3.\n\nThanks for the follow. I hope you enjoy using Corvalen "
                 "Pro!"_ns);
    });
  } else if (count > 1) {
    onMainQueue([handler, offered = Retained<NSArray>::retain(accounts)] {
      showAccountChoice(handler.get(), offered.get());
    });
  } else {
    onMainQueue([handler] { send<"openTwitter">(handler.get()); });
  }
}

// ---- Methods

// -dropMeAFollow: asks for access to the device's Twitter accounts. A system that knows no such
// accounts has nothing to ask for, and would not take the question.
// docs/decisions.md: Answers that are missing
void dropMeAFollow(id self, SEL) {
  const auto store = ACAccountStore::make();
  const ACAccountType type = store->accountTypeWithIdentifier(twitterAccountType());
  if (!type) return;
  auto completion =
      block<void(BOOL, id)>([store, accountType = Retained<ACAccountType>::retain(type),
                             handler = Retained<Object>::retain(view(self))](BOOL granted, id) {
        if (granted) followFrom(store->accountsWithAccountType(accountType.get()), handler);
      });
  store->requestAccess(type, completion.object());
}

// -followWithAccount: the answer is not looked at. Without the service there is no request.
void followWithAccount(id, SEL, id account) {
  const NSString service = twitterService();
  if (!service) return;
  const NSDictionary parameters = NSDictionary::dictionaryWithObjectsAndKeys(
      "qarrenvolt"_ns, "screen_name"_ns, "FALSE"_ns, "follow"_ns);
  const NSURL endpoint =
      NSURL::URLWithString("https://api.twitter.com/1.1/friendships/create.json"_ns);
  const SLRequest request = SLRequest::request(service, kRequestMethodPost, endpoint, parameters);
  request.setAccount(view<ACAccount>(account));
  auto ignore = block<void(id, id, id)>([](id, id, id) {});
  request.perform(ignore.object());
}

// Opens the profile in the client behind `scheme`, if there is one.
bool openIn(NSString scheme, NSString profile) {
  const UIApplication application = UIApplication::sharedApplication();
  if (!application.canOpenURL(NSURL::URLWithString(scheme))) return false;
  application.openURL(NSURL::URLWithString(profile.stringByAppendingString("qarrenvolt"_ns)));
  return true;
}

// -openTwitter: the first client that is installed, else the web.
void openTwitter(id, SEL) {
  if (openIn("tweetbot:"_ns, "tweetbot:///user_profile/"_ns)) return;
  if (openIn("twitterrific:"_ns, "twitterrific:///profile?screen_name="_ns)) return;
  if (openIn("tweetings:"_ns, "tweetings:///user?screen_name="_ns)) return;
  if (openIn("twitter:"_ns, "twitter://user?screen_name="_ns)) return;
  UIApplication::sharedApplication().openURL(
      NSURL::URLWithString("http://twitter.com/"_ns.stringByAppendingString("qarrenvolt"_ns)));
}

// An alert that the system takes away may name a button that is none: nobody follows then.
// docs/decisions.md: A button that is none
void accountsChosen(id self, id alert, NSInteger button) {
  markWelcomeAnswered();
  const auto accounts =
      Retained<NSArray>::retain(view<NSArray>(objc_getAssociatedObject(alert, accountsKey())));
  const auto chosen = static_cast<NSUInteger>(button - 1);
  if (button == kAllAccountsButton)
    enumerate(accounts.get(),
              [self](Object account) { send<"followWithAccount:">(view(self), account); });
  else if (button > 0 && chosen < accounts->count())
    send<"followWithAccount:">(view(self), accounts->objectAtIndex(chosen));
  showThanks("All done!"_ns,
             "\nYou're awesome <3.\n\nThanks for following me. I hope you enjoy using Corvalen "
             "Pro!"_ns);
}

// -alertView:clickedButtonAtIndex:
void clickedButton(id self, SEL, id alert, NSInteger button) {
  const NSInteger tag = view<UIAlertView>(alert).tag();
  if (tag == kWelcomeAlertTag && button == kFollowButton) {
    markWelcomeAnswered();
    send<"dropMeAFollow">(view(self));
  } else if (tag == kAccountChoiceAlertTag) {
    accountsChosen(self, alert, button);
  }
}

constexpr AddedMethod kMethods[] = {
    addedMethod<&clickedButton, "alertView:clickedButtonAtIndex:">(),
    addedMethod<&dropMeAFollow, "dropMeAFollow">(),
    addedMethod<&followWithAccount, "followWithAccount:">(),
    addedMethod<&openTwitter, "openTwitter">(),
};

}  // namespace

Retained<Object> makeFollowHandler() {
  return Retained<Object>::adopt(send<"new", Object>(classNamed<kHandlerClass>()));
}

// docs/decisions.md: The alert keeps its delegate alive
void holdHandler(UIAlertView alert, Object handler) {
  associate(alert, selector<"show">(), handler);
}

void registerFollowHandler() {
  const Class cls = objc_allocateClassPair(classNamed<"NSObject">().cls(), kHandlerClass.text, 0);
  if (!cls) return;  // another copy of this library has it
  addMethods<kMethods>(cls);
  objc_registerClassPair(cls);
}

}  // namespace corvalen::welcome
