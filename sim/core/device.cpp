#include "sim/core/device.hpp"

#include <algorithm>
#include <cstdlib>

#include "sim/core/injection.hpp"

namespace sim {

namespace {

// Objects and selectors live where neither the library nor memory handed to it ever is, below
// 4 GiB so that 32-bit processes can name them.
constexpr Address kFirstSelector = 0x50000000;
constexpr Address kFirstObject = 0x60000000;
constexpr Address kStep = 16;

}  // namespace

App* DeviceState::app(const std::string& identifier) {
  const auto found = std::ranges::find(apps, identifier, &App::identifier);
  return found == apps.end() ? nullptr : &*found;
}

Device::Device(Trace& trace, LibraryLoader& loader)
    : trace(trace), loader(loader), nextObject_(kFirstObject) {
  loader.setVersion(state.version);
}

Device::~Device() {
  while (!processes_.empty()) endProcess(*processes_.front());
  dead_.clear();
}

void Device::setVersion(double version) {
  state.version = version;
  loader.setVersion(version);
}

Process* Device::process(const std::string& identifier) {
  for (const auto& process : processes_)
    if (process->identifier == identifier) return process.get();
  return nullptr;
}

std::vector<Process*> Device::processes() {
  std::vector<Process*> all;
  for (const auto& process : processes_) all.push_back(process.get());
  return all;
}

void Device::bootSpringBoard() {
  if (Process* running = springBoard()) endProcess(*running);
  auto& process = *processes_.emplace_back(std::make_unique<Process>(*this, kSpringBoard));
  process.number = ++started_;
  callback(process, [&] {
    const CallSpan span(callTree, CallTree::Kind::Started, process.identifier, "");
    process.loadLibrary();
    startUpSpringBoard(process);
  });
}

void Device::startApp(const std::string& identifier) {
  if (App* app = state.app(identifier)) app->running = true;
  if (Process* board = springBoard())
    callback(*board, [&] { tellProcessLaunched(*board, identifier); });
  auto& process = *processes_.emplace_back(std::make_unique<Process>(*this, identifier));
  process.number = ++started_;
  callback(process, [&] {
    const CallSpan span(callTree, CallTree::Kind::Started, process.identifier, "");
    process.loadLibrary();
    startUpApp(process);
  });
}

void Device::startDaemon(const std::string& name) {
  auto& process =
      *processes_.emplace_back(std::make_unique<Process>(*this, name, Process::Program::Daemon));
  process.number = ++started_;
  callback(process, [&] {
    const CallSpan span(callTree, CallTree::Kind::Started, process.identifier, "");
    process.loadLibrary();
  });
}

void Device::endProcess(Process& process) {
  std::erase_if(queue_, [&](const Queued& queued) { return queued.process == process.number; });
  const auto found =
      std::ranges::find_if(processes_, [&](const auto& p) { return p.get() == &process; });
  if (found == processes_.end()) return;
  { const CallSpan span(callTree, CallTree::Kind::Ended, process.identifier, ""); }
  for (const auto timer : process.timers) clock.cancel(timer);
  process.observers.clear();
  process.ended = true;
  for (const auto& [type, service] : services_) service->processEnded(process);
  dead_.splice(dead_.end(), processes_, found);
  // Code of the process may still be on the stack: it goes with the outermost callback.
  if (depth_ == 0) dead_.clear();
}

namespace {

// The words of the library's variables. A thread of the platform's may register a selector, or bind
// a function at its first call; whatever else it changes is the main thread's.
class MainThreadState {
 public:
  explicit MainThreadState(Process& process) : process_(process) {
    each([&](Address at) { before_.push_back(process.library().dataWord(at)); });
  }
  void requireUnchanged() const {
    auto before = before_.begin();
    each([&](Address at) {
      if (before == before_.end()) return;
      const Address now = process_.library().dataWord(at);
      if (*before++ != now && !process_.device.selectorName(now) && !process_.library().isCode(now))
        throw Fault("a variable of the main thread's was changed off it");
    });
  }

 private:
  template <class Each>
  void each(Each visit) const {
    Library& library = process_.library();
    const unsigned word = library.pointerSize();
    for (const auto& [start, size] : library.variables())
      for (Address at = (start + word - 1) / word * word; at + word <= start + size; at += word)
        visit(at);
  }

  Process& process_;
  std::vector<Address> before_;
};

}  // namespace

bool Device::callback(Process& process, const std::function<void()>& body, Thread thread) {
  ++depth_;
  ++process.activity;
  const Thread before = std::exchange(process.thread, thread);
  bool alive = true;
  try {
    runCallback(process, body, thread);
  } catch (const Fault& fault) {
    alive = false;
    if (!process.ended) {
      effect(process, std::string("crash: ") + fault.what());
      if (App* app = state.app(process.identifier)) app->running = false;
      endProcess(process);
    }
  }
  process.thread = before;
  if (--depth_ == 0) dead_.clear();
  return alive;
}

void Device::runCallback(Process& process, const std::function<void()>& body, Thread thread) {
  std::optional<MainThreadState> kept;
  if (thread != Thread::Main && process.hasLibrary()) kept.emplace(process);
  const Address pool = process.pushPool();
  body();
  if (process.pools() != pool) throw Fault("an autorelease pool was pushed and not popped");
  process.popPool(pool);
  process.throwDeferredFault();
  if (kept) kept->requireUnchanged();
}

void Device::during(const std::string& name, std::function<void()> work) {
  interruptions_.emplace_back(name, std::move(work));
}

bool Device::isInterruptedAt(const std::string& name) const {
  return std::ranges::any_of(interruptions_, [&](const auto& one) { return one.first == name; });
}

void Device::interrupt(Process& process, const std::string& name) {
  const auto waiting =
      std::ranges::find_if(interruptions_, [&](const auto& one) { return one.first == name; });
  const auto work = std::move(waiting->second);
  interruptions_.erase(waiting);
  ++interrupted_;
  work();
  drain();
  if (process.ended) throw Fault("the process has ended");
}

void Device::enqueue(Process* process, std::function<void()> work) {
  queue_.push_back({process ? process->number : 0, std::move(work)});
}

void Device::drain() {
  while (!queue_.empty()) {
    ++steps_;
    if (injection) injection->beforeStep(*this);
    if (queue_.empty()) break;  // what was left died with its process
    ++depth_;  // a process that dies of it stays until the work itself, which may refer to it, is
               // gone
    {
      const auto work = std::move(queue_.front().work);
      queue_.pop_front();
      work();
    }
    if (--depth_ == 0) dead_.clear();
  }
}

void Device::advance(Microseconds span) {
  drain();
  const Microseconds lateness = injection ? injection->timerLateness() : 0;
  clock.advance(
      span, [this] { drain(); }, lateness);
}

void Device::postDarwin(const std::string& name) {
  const int times = injection ? injection->deliveries() : 1;
  const Microseconds delay = injection ? injection->deliveryDelay() : 0;
  for (int i = 0; i < times; ++i) {
    if (delay == 0)
      enqueue(nullptr, [this, name] { deliverDarwin(name); });
    else
      clock.schedule(delay, false, [this, name] { deliverDarwin(name); });
  }
}

void Device::deliverDarwin(const std::string& name) {
  for (Process* process : processes()) {
    // A process may have died by what an earlier one did.
    const auto alive = processes();
    if (std::ranges::find(alive, process) == alive.end()) continue;
    std::vector<Address> callbacks;
    for (const auto& observer : process->observers)
      if (observer.darwin && observer.name == name) callbacks.push_back(observer.callback);
    for (const Address code : callbacks) {
      const std::vector<Value> nothing(5, Value::of(Kind::Pointer, 0));
      const auto tell = [&] {
        const CallSpan span(callTree, CallTree::Kind::Delivery, process->identifier, name.c_str());
        process->library().call(code, Kind::Void, nothing);
      };
      if (!callback(*process, tell)) break;
    }
  }
}

void Device::effect(const Process& process, const std::string& call, CallTree::By by) {
  const CallSpan span(callTree, CallTree::Kind::Effect, process.identifier, by,
                      [&] { return call; });
  trace.effect(clock.now(), process.identifier, call);
}

void Device::otherCall(const Process& process, const std::string& call) {
  trace.otherCall(clock.now(), process.identifier, call);
}

Address Device::nextObjectAddress() {
  const Address address = nextObject_;
  nextObject_ += kStep;
  if (address >= 0x7fff0000) throw Fault("the device is out of object addresses");
  return address;
}

Address Device::selector(const std::string& name) {
  const auto [entry, fresh] =
      selectors_.try_emplace(name, kFirstSelector + kStep * selectors_.size());
  if (fresh) selectorNames_.push_back(name);
  return entry->second;
}

const std::string* Device::selectorName(Address address) const {
  const Address index = (address - kFirstSelector) / kStep;
  const bool isOne = address >= kFirstSelector && address % kStep == 0;
  return isOne && index < selectorNames_.size() ? &selectorNames_[index] : nullptr;
}

}  // namespace sim
