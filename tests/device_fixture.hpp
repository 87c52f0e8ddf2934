// A device with the library, for tests of what no scenario reaches.
#pragma once
#include <gtest/gtest.h>

#include <algorithm>
#include <cstdlib>
#include <memory>
#include <string>
#include <vector>

#include "sim/core/device.hpp"
#include "sim/foundation/string.hpp"
#include "sim/guest/guest_library.hpp"
#include "sim/host/host_library.hpp"

namespace sim {

// Keeps the calls that it is told of.
class Calls final : public Trace {
 public:
  void effect(Microseconds, const std::string&, const std::string& call) override {
    all.push_back(call);
  }
  void otherCall(Microseconds, const std::string&, const std::string& call) override {
    all.push_back(call);
  }
  bool wantsAllCalls() const override { return wantsAll; }
  std::size_t count(const std::string& call) const {
    return static_cast<std::size_t>(std::ranges::count(all, call));
  }
  bool has(const std::string& call) const { return count(call) > 0; }

  std::vector<std::string> all;
  bool wantsAll = false;
};

// The library's host build: the one built beside the tests, unless the environment names another.
inline std::string hostLibrary() {
  const char* named = std::getenv("CORVALEN_LIBRARY");
  return named ? named : CORVALEN_LIBRARY;
}

// The library that tests run: the host build, or the slice of a device binary that the environment
// names with CORVALEN_IMAGE and CORVALEN_SLICE.
inline std::unique_ptr<LibraryLoader> testedLibrary() {
  const char* image = std::getenv("CORVALEN_IMAGE");
  if (!image) return std::make_unique<HostLibraryLoader>(hostLibrary());
  const char* slice = std::getenv("CORVALEN_SLICE");
  const bool armv7 = slice && std::string(slice) == "armv7";
  return std::make_unique<guest::GuestLibraryLoader>(
      image, armv7 ? guest::Slice::armv7 : guest::Slice::arm64);
}

class DeviceTest : public ::testing::Test {
 protected:
  DeviceTest() : loader_(testedLibrary()), device(calls, *loader_) {}

  Calls calls;
  std::unique_ptr<LibraryLoader> loader_;
  Device device;

  // SpringBoard's process, booted.
  Process& booted() {
    device.bootSpringBoard();
    return *device.springBoard();
  }
  // Whatever else is looked at: nothing may have ended a process since calls were last cleared.
  void expectNoCrash() const {
    for (const std::string& call : calls.all)
      if (call.starts_with("crash: ")) ADD_FAILURE() << call;
  }
  // A string that the process's pool holds.
  static Value text(Process& process, const std::string& string) {
    return Value::object(process.autorelease(makeString(process, string))->address);
  }
  // A class object as the receiver of messages.
  static Object* cls(Process& process, const std::string& name) { return process.findClass(name); }

  // A block that runs `body` with its arguments, as any code of the process may pass one.
  static Value makeBlock(Process& process, Signature signature, Native body) {
    Library& library = process.library();
    const unsigned word = library.pointerSize();
    const Address block = library.allocate(4 * word + 8);
    const Address descriptor = library.allocate(2 * word);
    auto code = std::make_shared<NativeCode>();
    code->name = "block";
    code->signature = std::move(signature);
    code->signature.arguments.pushFront(Kind::Pointer);
    code->run = std::move(body);
    code->relay = true;
    const std::uint32_t isGlobal = 1u << 28;
    library.writePointer(block, library.variable("_NSConcreteGlobalBlock"));
    library.write(block + word, &isGlobal, sizeof isGlobal);
    library.writePointer(block + word + 8, library.expose(std::move(code), false));
    library.writePointer(block + 2 * word + 8, descriptor);
    library.writePointer(descriptor + word, 3 * word + 8);
    return Value::object(block);
  }
};

}  // namespace sim
