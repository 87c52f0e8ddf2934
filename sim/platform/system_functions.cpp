// What libSystem exports: dyld, libdispatch, libnotify and the C library.
#include "sim/core/device.hpp"
#include "sim/foundation/block.hpp"
#include "sim/platform/functions.hpp"

namespace sim {

namespace {

constexpr Address kSomeImage = 0x40000000;  // what dlopen answers; nobody looks inside

// Frameworks are there when a class or function of theirs can be.
Pointer open(Process&, std::string path, int) {
  return {path.starts_with("/System/Library/") ? kSomeImage : 0};
}

Pointer find(Process& process, Pointer, std::string name) { return {process.symbol(name)}; }

unsigned post(Process& process, std::string name) {
  process.device.postDarwin(name);
  return 0;
}

void dispatchAsync(Process& process, Pointer queue, Block* block) {
  if (queue.address != process.library().variable("_dispatch_main_q"))
    throw Fault("dispatch_async on an unknown queue");
  if (!block) throw Fault("dispatch_async of no block");
  const Ref<Object> kept = block->copied().object;
  process.device.enqueue(&process, [&process, kept] {
    process.device.callback(process, [&] { static_cast<Block&>(*kept).invoke(Kind::Void, {}); });
  });
}

int isMainThread(Process& process) { return process.thread == Thread::Main ? 1 : 0; }

int runCommand(Process&, std::string) { return 0; }

}  // namespace

Functions systemFunctions() {
  return {
      bindFunction("dlopen", &open),
      bindFunction("dlsym", &find),
      effect(bindFunction("notify_post", &post)),
      bindFunction("dispatch_async", &dispatchAsync),
      bindFunction("pthread_main_np", &isMainThread),
      effect(bindFunction("system", &runCommand)),
  };
}

}  // namespace sim
