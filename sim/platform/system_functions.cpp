// What libSystem exports: dyld, libdispatch, libnotify and the C library. Leaves out queues but the
// main one, notifications that are merged because they come quickly, and what a command line does.
#include "sim/core/device.hpp"
#include "sim/foundation/block.hpp"
#include "sim/platform/functions.hpp"

namespace sim {

namespace {

// By its full path only, as that is how it is installed.
Pointer open(Process& process, std::string path, int) {
  for (const FrameworkImage& image : frameworkImages())
    if (path == image.path && process.load(image.framework)) return {imageHandle(image.framework)};
  return {0};
}

// RTLD_DEFAULT, whatever the width of pointers.
bool isEveryImage(Pointer image) { return static_cast<std::int32_t>(image.address) == -2; }

Pointer find(Process& process, Pointer image, std::string name) {
  if (isEveryImage(image)) return {process.symbol(name)};
  const auto framework = frameworkOfHandle(image.address);
  return {framework ? process.symbol(name, framework) : 0};
}

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
