// Twitter accounts and signed requests: Accounts and Social, loaded at first use.
#pragma once
#include "platform/foundation.hpp"

namespace platform {

struct ACAccountType : Object {};

struct ACAccount : Object {
  NSString username() const { return send<"username", NSString>(*this); }
};

struct ACAccountStore : Object {
  static Retained<ACAccountStore> make() {
    return Retained<ACAccountStore>::adopt(
        send<"new", ACAccountStore>(classNamed<"ACAccountStore">()));
  }
  ACAccountType accountTypeWithIdentifier(NSString identifier) const {
    return send<"accountTypeWithAccountTypeIdentifier:", ACAccountType>(*this, identifier);
  }
  // `completion` is a block (BOOL granted, NSError*), copied and called on a thread of its own.
  void requestAccess(ACAccountType type, Object completion) const {
    send<"requestAccessToAccountsWithType:withCompletionHandler:">(*this, type, completion);
  }
  NSArray accountsWithAccountType(ACAccountType type) const {  // autoreleased
    return send<"accountsWithAccountType:", NSArray>(*this, type);
  }
};

struct SLRequest : Object {
  // Autoreleased.
  static SLRequest request(NSString service, NSInteger method, NSURL url, NSDictionary parameters) {
    return send<"requestForServiceType:requestMethod:URL:parameters:", SLRequest>(
        classNamed<"SLRequest">(), service, method, url, parameters);
  }
  void setAccount(ACAccount account) const { send<"setAccount:">(*this, account); }
  // `handler` is a block (NSData*, NSHTTPURLResponse*, NSError*).
  void perform(Object handler) const { send<"performRequestWithHandler:">(*this, handler); }
};
inline constexpr NSInteger kRequestMethodPost = 1;

// A string constant that a framework exports; nil where the framework cannot be loaded.
template <Literal Framework, Literal Symbol>
NSString frameworkString() {
  void* const image = dlopen(kText<Framework>.text, kLoadLazily);
  auto* const variable =
      static_cast<const id*>(dlsym(image ? image : everyImage(), kText<Symbol>.text));
  return view<NSString>(variable ? *variable : nullptr);
}

inline NSString twitterAccountType() {
  return frameworkString<"/System/Library/Frameworks/Accounts.framework/Accounts",
                         "ACAccountTypeIdentifierTwitter">();
}
inline NSString twitterService() {
  return frameworkString<"/System/Library/Frameworks/Social.framework/Social",
                         "SLServiceTypeTwitter">();
}

}  // namespace platform
