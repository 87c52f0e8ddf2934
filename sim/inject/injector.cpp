#include "sim/inject/injector.hpp"

#include "sim/core/describe.hpp"
#include "sim/platform/device_actions.hpp"

namespace sim::inject {

namespace {

const char* const kSettings = "/var/mobile/Library/Preferences/com.qvethmar.corvalenpro.plist";

// What the platform never fails to answer: what only hands back its argument, and its centers.
bool neverFails(const std::string& name) {
  static const std::set<std::string> all = {"objc_retain",
                                            "objc_autorelease",
                                            "objc_autoreleasePoolPush",
                                            "object_getClass",
                                            "sel_registerName",
                                            "CFNotificationCenterGetDarwinNotifyCenter",
                                            "CFNotificationCenterGetLocalCenter",
                                            "retain",
                                            "autorelease",
                                            "self",
                                            "class",
                                            "stringByAppendingString:"};
  return all.contains(name);
}

// Calls whose NO or number says that they failed. Other answers of that kind are plain answers;
// class_addMethod says NO only where the method is there already.
std::optional<Value> failure(const std::string& name) {
  static const std::set<std::string> booleans = {
      "writeToFile:atomically:", "SCNetworkReachabilityGetFlags",
      "respondsToSelector:", "fileExistsAtPath:"};
  if (booleans.contains(name)) return Value::boolean(false);
  if (name == "system") return Value::integer(Kind::Int32, 256);
  if (name == "notify_post") return Value::integer(Kind::UInt32, 1000000);
  return std::nullopt;
}

bool isObject(Kind kind) {
  return kind == Kind::Object || kind == Kind::Class || kind == Kind::Pointer;
}

// The library made the receiver and hands it over; otherwise a hook passes the message on, and the
// platform made it.
bool libraryOwns(const Invocation& call) {
  const Method* method = call.self->isa->find(call.name);
  return method && method->implementation.library == 0;
}

bool isInitialiser(const Invocation& call) {
  return call.self && !dynamic_cast<Class*>(call.self) && call.name.starts_with("init");
}

// A failed initialiser lets go of its receiver.
Value failedInitialiser(Invocation& call) {
  if (libraryOwns(call)) call.self->libraryRelease();
  return Value::nil();
}

Value initialiseAnother(const NativeCode& code, Invocation& call) {
  const Ref<Object> fresh =
      call.process.autorelease(call.process.allocateInstance(*call.self->isa));
  Object* given = std::exchange(call.self, fresh.get());
  const bool owns = libraryOwns(call);
  if (owns) fresh->libraryRetain();
  const Value result = code.run(call);
  if (owns) given->libraryRelease();
  return result;
}

}  // namespace

Injector::Injector(std::vector<InjectedFault> faults) : faults_(std::move(faults)) {
  for (const InjectedFault& fault : faults_) {
    if (fault.kind == FaultKind::Nothing) failing_.insert(fault.target);
    if (fault.kind == FaultKind::Another) answeringAnother_.insert(fault.target);
    if (fault.kind == FaultKind::LateTimers) timerLateness_ = fault.number * 1000;
    if (fault.kind == FaultKind::LateNotices) deliveryDelay_ = fault.number * 1000;
    if (fault.kind == FaultKind::Doubled) deliveries_ = static_cast<int>(fault.number);
    if (fault.kind == FaultKind::LostNotices) deliveries_ = 0;
  }
}

std::optional<Value> Injector::instead(const NativeCode& code, Invocation& call) {
  if (failing_.empty() && answeringAnother_.empty()) return std::nullopt;
  const std::string shown = described(call);
  const bool fails = failing_.contains(shown);
  const bool answersAnother = answeringAnother_.contains(shown);
  if (fails || answersAnother) struck_ = true;
  if (fails) {
    if (isInitialiser(call)) return failedInitialiser(call);
    return failure(call.name).value_or(Value::of(code.signature.result, 0));
  }
  if (answersAnother) return initialiseAnother(code, call);
  return std::nullopt;
}

void Injector::ran(const NativeCode&, const Invocation& call, const Value& result) {
  const bool something = isObject(result.kind) && result.bits != 0 && !neverFails(call.name);
  const bool couldFail = failure(call.name).has_value();
  if (!something && !couldFail) return;
  const std::string shown = described(call);
  answered_.insert(shown);
  if (something && isInitialiser(call)) initialisers_.insert(shown);
}

void Injector::beforeStep(Device& device) {
  const auto step = static_cast<long>(device.steps());
  for (const Process* process : device.processes()) livedAt_.insert({process->identifier, step});
  for (const InjectedFault& fault : faults_) {
    if (fault.kind != FaultKind::Death || fault.number != step) continue;
    Process* process = device.process(fault.target);
    if (!process) continue;
    killed_[fault.target] = process->isDaemon;
    if (process->isSpringBoard())
      device.endProcess(*process);
    else
      end(device, fault.target);
  }
}

bool Injector::before(Device& device, const std::string& line) {
  if (line != "boot" && line != "announce" && !line.starts_with("start ")) return false;
  bool changed = false;
  for (const InjectedFault& fault : faults_) {
    const std::string* file = device.files.read(kSettings);
    if (fault.kind != FaultKind::CutSettings || !file) continue;
    const auto size = static_cast<std::size_t>(fault.number);
    if (file->size() <= size) continue;
    device.files.write(kSettings, file->substr(0, size));
    changed = true;
  }
  return changed;
}

void Injector::after(Device& device) {
  for (const InjectedFault& fault : faults_)
    if (fault.kind == FaultKind::AlertGoes)
      dismissAlert(device, static_cast<Dismissal>(fault.number));
  device.drain();
  // Whoever starts processes starts again what died.
  while (!killed_.empty()) {
    const auto [process, isDaemon] = *killed_.begin();
    killed_.erase(killed_.begin());
    if (device.process(process)) continue;
    if (isDaemon)
      startDaemon(device, process);
    else if (process == kSpringBoard)
      boot(device);
    else if (device.state.app(process))
      start(device, process);
    device.drain();
  }
}

}  // namespace sim::inject
