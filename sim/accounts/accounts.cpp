// Accounts and Social: the device's Twitter accounts, and requests signed by one of them. Leaves
// out the dialogue that asks the user for access (the device's state says what he answers), other
// services, and whatever the network would answer.
#include <fmt/format.h>

#include <algorithm>

#include "sim/accounts/definitions.hpp"
#include "sim/core/device.hpp"
#include "sim/foundation/array.hpp"
#include "sim/foundation/block.hpp"
#include "sim/foundation/dictionary.hpp"
#include "sim/foundation/services.hpp"
#include "sim/foundation/string.hpp"

namespace sim {

namespace {

class ACAccountType final : public Object {
 public:
  using Object::Object;
};

class ACAccount final : public Object {
 public:
  ACAccount(Process& owner, const std::string& name)
      : Object(owner), username_(makeString(owner, name)) {}
  NSString* username() const { return username_.get(); }

 private:
  Ref<NSString> username_;
};

class ACAccountStore final : public Object {
 public:
  using Object::Object;

  // Nobody keeps it but who asked.
  Ref<ACAccountType> typeWithIdentifier(NSString* identifier) {
    const bool known = textOf(identifier) == "com.apple.twitter";
    if (!known || !process.findClass("ACAccountType")) return {};
    return process.make<ACAccountType>("ACAccountType");
  }

  // The answer comes on a thread of the framework's, later.
  void requestAccess(ACAccountType* type, Block* completion) {
    if (!type || !completion) throw Fault("an account request without type or completion");
    const Ref<Object> kept = completion->copied().object;
    Process* owner = &process;
    process.device.enqueue(owner, [owner, kept] {
      owner->device.callback(
          *owner,
          [&] {
            static_cast<Block&>(*kept).invoke(
                Kind::Void, {Value::boolean(owner->device.state.accountsGranted), Value::nil()});
          },
          Thread::Other);
    });
  }

  Ref<NSArray> accounts(ACAccountType*) {
    std::vector<Ref<Object>> all;
    if (!process.findClass("ACAccount")) return makeArray(process, all);
    for (const std::string& name : process.device.state.accounts)
      all.emplace_back(process.make<ACAccount>("ACAccount", name));
    return makeArray(process, all);
  }
};

class SLRequest final : public Object {
 public:
  using Object::Object;
  void setAccount(ACAccount* account) { account_ = Ref<ACAccount>(account); }
  void perform(Block* handler) {
    if (!handler) throw Fault("a request without a handler");
    const Ref<Object> kept = handler->copied().object;
    Process* owner = &process;
    process.device.enqueue(owner, [owner, kept] {
      owner->device.callback(
          *owner,
          [&] {
            static_cast<Block&>(*kept).invoke(Kind::Void,
                                              {Value::nil(), Value::nil(), Value::nil()});
          },
          Thread::Other);
    });
  }

  std::string contents() const {
    std::vector<NSDictionary::Entry> sorted;
    if (parameters) sorted = parameters->entries();
    std::ranges::sort(sorted, {}, &NSDictionary::Entry::key);
    std::string shown;
    for (const auto& entry : sorted)
      shown +=
          fmt::format("{}{}={}", shown.empty() ? "" : ", ", entry.key, entry.value->description());
    return fmt::format("POST {} {{{}}} as {}", quoted(url ? url->text : ""), shown,
                       account_ ? account_->username()->description() : "nil");
  }

  Ref<NSURL> url;
  Ref<NSDictionary> parameters;

 private:
  Ref<ACAccount> account_;
};

Ref<SLRequest> makeRequest(Class& cls, NSString* service, long method, NSURL* url,
                           NSDictionary* parameters) {
  constexpr long kPost = 1;
  if (textOf(service) != "SLServiceTypeTwitter" || method != kPost)
    throw Fault("a request that is no POST to Twitter");
  auto request = cls.process.make<SLRequest>("SLRequest");
  request->url = Ref<NSURL>(url);
  request->parameters = Ref<NSDictionary>(parameters);
  return request;
}

std::string describeRequest(const Invocation& invocation) {
  return "-[SLRequest performRequestWithHandler:] " +
         dynamic_cast<SLRequest&>(*invocation.self).contents();
}

std::string describeAccess(const Invocation&) {
  return "-[ACAccountStore requestAccessToAccountsWithType:withCompletionHandler:]";
}

}  // namespace

ClassDefinition defineACAccountStore() {
  auto definition =
      ClassDefinition::of<ACAccountStore>("ACAccountStore", "NSObject", Home::springBoard());
  definition.mainThreadOnly(false);
  definition.partOf(Framework::Accounts);
  definition.method("accountTypeWithAccountTypeIdentifier:", &ACAccountStore::typeWithIdentifier);
  definition
      .method("requestAccessToAccountsWithType:withCompletionHandler:",
              &ACAccountStore::requestAccess)
      .effect(describeAccess);
  definition.method("accountsWithAccountType:", &ACAccountStore::accounts);
  return definition;
}

ClassDefinition defineACAccountType() {
  return ClassDefinition::of<ACAccountType>("ACAccountType", "NSObject", Home::springBoard())
      .mainThreadOnly(false)
      .partOf(Framework::Accounts);
}

ClassDefinition defineACAccount() {
  auto definition = ClassDefinition::of<ACAccount>("ACAccount", "NSObject", Home::springBoard());
  definition.mainThreadOnly(false);
  definition.partOf(Framework::Accounts);
  definition.method("username", &ACAccount::username);
  return definition;
}

ClassDefinition defineSLRequest() {
  auto definition = ClassDefinition::of<SLRequest>("SLRequest", "NSObject", Home::springBoard());
  definition.mainThreadOnly(false);
  definition.partOf(Framework::Social);
  definition.classMethod("requestForServiceType:requestMethod:URL:parameters:", &makeRequest);
  definition.method("setAccount:", &SLRequest::setAccount);
  definition.method("performRequestWithHandler:", &SLRequest::perform).effect(describeRequest);
  return definition;
}

}  // namespace sim
