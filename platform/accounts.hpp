// Twitter accounts and signed requests: Accounts and Social, loaded before anything of them is
// looked up, as SpringBoard has them only once somebody needed them. Stands in for the vendor's
// headers of both; leaves out every other kind of account and request, and what a request answers.
#pragma once
#include "platform/foundation.hpp"
#include "platform/framework.hpp"

namespace platform {

struct ACAccountType : Object {};

struct ACAccount : Object {
  NSString username() const { return send<"username", NSString>(*this); }
};

struct ACAccountStore : Object {
  static Retained<ACAccountStore> make() {
    return Retained<ACAccountStore>::adopt(
        send<"new", ACAccountStore>(classIn<"ACAccountStore">(framework::kAccounts)));
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
        classIn<"SLRequest">(framework::kSocial), service, method, url, parameters);
  }
  void setAccount(ACAccount account) const { send<"setAccount:">(*this, account); }
  // `handler` is a block (NSData*, NSHTTPURLResponse*, NSError*).
  void perform(Object handler) const { send<"performRequestWithHandler:">(*this, handler); }
};
inline constexpr NSInteger kRequestMethodPost = 1;

// Constants; nil where the framework cannot be loaded.
inline NSString twitterAccountType() {
  return constantIn<NSString>(framework::kAccounts, "ACAccountTypeIdentifierTwitter");
}
inline NSString twitterService() {
  return constantIn<NSString>(framework::kSocial, "SLServiceTypeTwitter");
}

}  // namespace platform
