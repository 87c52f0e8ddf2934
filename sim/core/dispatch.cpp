// Message sending and function calls: how a call finds its code, on whichever side it is. Stands in
// for objc_msgSend, the dynamic linker's binding of functions, and what Substrate puts between;
// leaves out forwarding, by which an object may take messages that it has no method for.
#include <fmt/format.h>

#include "sim/core/class_definition.hpp"
#include "sim/core/describe.hpp"
#include "sim/core/device.hpp"
#include "sim/core/hooked_call.hpp"
#include "sim/core/injection.hpp"

namespace sim {

namespace {

std::string shownMethod(const Object& receiver, const std::string& selector) {
  const auto* cls = dynamic_cast<const Class*>(&receiver);
  return fmt::format("{}[{} {}]", cls ? '+' : '-', receiver.isa->name, selector);
}

std::string unrecognized(const Object& receiver, const std::string& selector) {
  return shownMethod(receiver, selector) + ": unrecognized selector";
}

// Whether NSObject itself has it.
bool isRootMethod(Process& process, const Method& method) {
  Class& root = process.requireClass("NSObject");
  return root.own(method.selector) == &method || root.isa->own(method.selector) == &method;
}

}  // namespace

Value Process::send(Object* receiver, const std::string& selector, std::vector<Value> arguments) {
  if (!receiver) return Value::none();
  return dispatch(*receiver, selector, nullptr, &arguments, Caller::Platform);
}

Value Process::sendIfAnswered(Object* receiver, const std::string& selector,
                              std::vector<Value> arguments) {
  if (!receiver || !receiver->isa->find(selector)) return Value::none();
  return send(receiver, selector, std::move(arguments));
}

Value Process::messageFromLibrary(ArgumentSource& source) {
  const Address receiver = source.next(Kind::Object).bits;
  const Address name = source.next(Kind::Selector).bits;
  if (receiver == 0) return Value::none();
  const std::string& selector = selectorName(name);
  Object* target = object(receiver);
  return dispatch(*target, selector, &source, nullptr, Caller::Library);
}

// Arguments come either ready (from platform code) or still in the caller's registers.
Value Process::dispatch(Object& receiver, const std::string& selector, ArgumentSource* source,
                        std::vector<Value>* arguments, Caller caller) {
  throwDeferredFault();
  Method* method = receiver.isa->find(selector);
  const bool answered = method && (method->resolvedBy.empty() || findClass(method->resolvedBy));
  if (!answered) throw Fault(unrecognized(receiver, selector));
  requireThread(receiver, *method);
  std::vector<Value> values;
  if (arguments) {
    values = std::move(*arguments);
    if (values.size() != method->signature.arguments.size())
      throw std::logic_error("platform code sends " + selector + " with a wrong argument count");
  } else {
    values.reserve(method->signature.arguments.size());
    for (const Kind kind : method->signature.arguments) values.push_back(source->next(kind));
    if (method->signature.variadic) source->beginVariadic();
  }
  const Implementation implementation = method->implementation;  // hooks may change the method
  const Signature signature = method->signature;
  return callImplementation(implementation, signature, &receiver, selector, std::move(values),
                            signature.variadic ? source : nullptr, caller);
}

Value Process::callImplementation(const Implementation& implementation, const Signature& signature,
                                  Object* self, const std::string& name,
                                  std::vector<Value> arguments, ArgumentSource* rest,
                                  Caller caller) {
  Invocation invocation{*this, self, name, std::move(arguments), rest, caller};
  if (implementation.native) return runNative(*implementation.native, invocation);
  if (device.trace.wantsAllCalls()) device.otherCall(*this, described(invocation));
  const auto kind = implementation.hooked ? CallTree::Kind::Hook : CallTree::Kind::Callback;
  const CallSpan span(device.callTree, kind, identifier, CallTree::By::Platform,
                      [&] { return described(invocation); });
  std::vector<Value> all;
  if (self) {
    all.push_back(Value::object(self->address));
    all.push_back(Value::of(Kind::Selector, selector(name)));
  }
  all.insert(all.end(), invocation.arguments.begin(), invocation.arguments.end());
  if (!implementation.hooked) return library_->call(implementation.library, signature.result, all);
  HookedCall call(*implementation.hooked, invocation);
  const Value result = library_->call(implementation.library, signature.result, all);
  call.check(result);
  return result;
}

Value Process::runNative(const NativeCode& code, Invocation& invocation) {
  for (std::size_t i = hookedCalls.size(); i > 0; --i) {
    HookedCall& call = *hookedCalls[i - 1];
    if (!call.isOf(code)) continue;
    call.reach(invocation);
    if (device.callTree) device.callTree->passedOn(identifier, hookedCalls.size() - i);
    const Value answer = runWatched(code, invocation, true);
    call.answer(answer);
    return answer;
  }
  return runWatched(code, invocation, false);
}

namespace {

// What a call answered, for those who show it. An odd answer is found out elsewhere.
std::string shownAnswer(Process& process, const Value& result) {
  try {
    return described(process, result);
  } catch (const Fault&) {
    return "";
  }
}

}  // namespace

Value Process::runWatched(const NativeCode& code, Invocation& invocation, bool passedOn) {
  const bool told = !code.relay && (code.effect || device.callTree || device.trace.wantsAllCalls());
  if (!told) return runInjected(code, invocation);
  const std::string call = code.describe ? code.describe(invocation) : described(invocation);
  const auto by = passedOn                               ? CallTree::By::Passed
                  : invocation.caller == Caller::Library ? CallTree::By::Library
                                                         : CallTree::By::Platform;
  const CallSpan span(device.callTree, code.effect ? CallTree::Kind::Effect : CallTree::Kind::Call,
                      identifier, by, [&] { return call; });
  if (code.effect)
    device.trace.effect(device.clock.now(), identifier, call);
  else if (device.trace.wantsAllCalls())
    device.otherCall(*this, call);
  const Value result = runInjected(code, invocation);
  if (device.callTree) device.callTree->answered(shownAnswer(*this, result));
  return result;
}

// The call itself, with what happens in the middle of it and what goes wrong with it.
Value Process::runInjected(const NativeCode& code, Invocation& invocation) {
  Ref<Object> alive;  // whoever sent the message holds its receiver until it is over
  if (!code.relay && device.isInterruptedAt(code.name)) {
    alive = Ref<Object>(invocation.self);
    device.interrupt(*this, code.name);
  }
  Injection* injection = device.injection;
  if (!injection || code.relay || invocation.caller != Caller::Library) return code.run(invocation);
  if (const auto answer = injection->instead(code, invocation)) return *answer;
  const Value result = code.run(invocation);
  injection->ran(code, invocation, result);
  return result;
}

Value Process::callFromLibrary(const std::shared_ptr<const NativeCode>& code, bool isMethod,
                               ArgumentSource& source) {
  Invocation invocation{*this, nullptr, code->name, {}, nullptr, Caller::Library};
  if (isMethod) {
    invocation.self = object(source.next(Kind::Object).bits);
    source.next(Kind::Selector);
    if (!invocation.self) throw Fault(code->name + " called on nothing");
  }
  invocation.arguments.reserve(code->signature.arguments.size());
  for (const Kind kind : code->signature.arguments)
    invocation.arguments.push_back(source.next(kind));
  if (code->signature.variadic) {
    source.beginVariadic();
    invocation.rest = &source;
  }
  return runNative(*code, invocation);
}

// Reference counting and questions about the class are anybody's.
void Process::requireThread(Object& receiver, const Method& method) {
  if (thread == Thread::Main && receiver.onlyOn.value_or(Thread::Main) == Thread::Main) return;
  if (isRootMethod(*this, method)) return;
  if (receiver.isa->mainThreadOnly)
    throw Fault(shownMethod(receiver, method.selector) + " off the main thread");
  if (receiver.onlyOn && *receiver.onlyOn != thread)
    throw Fault(shownMethod(receiver, method.selector) + " on another thread than it was made on");
}

// ---- C functions

Process::Function* Process::function(const std::string& name) {
  static const auto known = [] {
    std::unordered_map<std::string, std::shared_ptr<const NativeCode>> all;
    for (const auto& code : platformFunctions()) all[code->name] = code;
    return all;
  }();
  if (const auto found = functions_.find(name); found != functions_.end()) return &found->second;
  const auto found = known.find(name);
  if (found == known.end()) return nullptr;
  const auto& code = found->second;
  return &(functions_[name] = {code, 0, {code, 0, nullptr}});
}

Value Process::functionFromLibrary(const std::string& name, ArgumentSource& source) {
  if (name == "objc_msgSend") return messageFromLibrary(source);
  const Function* called = function(name);
  if (!called) throw Fault("the platform has no function " + name);
  const auto& implementation = called->implementation;
  if (implementation.native) return callFromLibrary(implementation.native, false, source);
  std::vector<Value> arguments;
  for (const Kind kind : called->native->signature.arguments)
    arguments.push_back(source.next(kind));
  return callFunction(name, std::move(arguments), Caller::Library);
}

Value Process::callFunction(const std::string& name, std::vector<Value> arguments, Caller caller) {
  const Function* called = function(name);
  if (!called) throw std::logic_error("platform code calls " + name + ", which there is not");
  const Implementation implementation = called->implementation;  // hooks may change it
  return callImplementation(implementation, called->native->signature, nullptr, name,
                            std::move(arguments), nullptr, caller);
}

bool Process::isExported(Framework by, std::optional<Framework> only) const {
  return has(by) && (!only || *only == by);
}

Address Process::symbol(const std::string& name, std::optional<Framework> only) {
  Function* found = function(name);
  if (!found) return platformVariable(name, only);
  if (!isExported(found->native->framework, only)) return 0;
  if (!found->exposed) {
    // What is handed out goes by the name, so that it meets a replacement made later.
    auto entry = std::make_shared<NativeCode>(*found->native);
    entry->relay = true;
    entry->run = [name](Invocation& invocation) {
      return invocation.process.callFunction(name, invocation.arguments, invocation.caller);
    };
    entry->describe = {};
    found->exposed = library_->expose(std::move(entry), false);
  }
  return found->exposed;
}

// ---- Hooks

// An inherited method is looked up again at each call; the class's own is taken as it is.
Implementation Process::previousOf(Class& cls, const std::string& selector, const Method& found) {
  if (cls.own(selector)) return found.implementation;
  auto late = std::make_shared<NativeCode>();
  late->name = selector;
  late->relay = true;
  late->signature = found.signature;
  late->run = [cls = &cls, selector](Invocation& invocation) {
    Method* method = cls->superclass->find(selector);
    return invocation.process.callImplementation(method->implementation, method->signature,
                                                 invocation.self, selector, invocation.arguments,
                                                 invocation.rest, invocation.caller);
  };
  return {std::move(late), 0, found.implementation.platform()};
}

void Process::hookMethod(Class* cls, const std::string& selector, Address replacement,
                         Address slot) {
  if (!cls || !replacement) return;
  const Method* found = cls->find(selector);
  if (!found) return;
  const Method replaced = *found;
  if (slot) {
    const Implementation previous = previousOf(*cls, selector, replaced);
    library_->writePointer(
        slot, previous.native ? library_->expose(previous.native, true) : previous.library);
  }
  Method& own = cls->methods[selector] = replaced;
  own.implementation = {nullptr, replacement, replaced.implementation.platform()};
}

void Process::hookMethod(Class* cls, const std::string& selector, const Replace& replace) {
  const Method* found = cls ? cls->find(selector) : nullptr;
  if (!found) return;
  Method replaced = *found;
  const auto platform = found->implementation.platform();
  replaced.implementation = previousOf(*cls, selector, replaced);
  auto code = std::make_shared<NativeCode>(replace(replaced));
  Method& own = cls->methods[selector] = replaced;
  own.implementation = {std::move(code), 0, platform};
}

void Process::hookFunction(Address symbolAddress, Address replacement, Address slot) {
  for (auto& [name, function] : functions_) {
    if (!symbolAddress || function.exposed != symbolAddress) continue;
    const Implementation& now = function.implementation;
    const Address previous = now.native ? library_->expose(now.native, false) : now.library;
    if (slot) library_->writePointer(slot, previous);
    function.implementation = {nullptr, replacement, function.native};
    return;
  }
  if (symbolAddress) throw Fault("MSHookFunction of an address that is no function");
}

void Process::hookFunction(const std::string& name, const Replace& replace) {
  Function* found = function(name);
  if (!found) return;
  auto code = std::make_shared<NativeCode>(
      replace({name, found->native->signature, found->implementation}));
  found->implementation = {std::move(code), 0, found->native};
}

std::string Process::functionName(Address function) const {
  if (function == 0) return "nil";
  for (const auto& [name, known] : functions_)
    if (known.exposed == function) return name;
  throw Fault("an address that is no function");
}

bool Process::responds(Object& object, const std::string& selector) {
  const Method* method = object.isa->find(selector);
  return method && method->resolvedBy.empty();
}

}  // namespace sim
