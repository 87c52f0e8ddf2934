// The simulated platform forgives nothing that the phone would not.
#include "sim/core/bind.hpp"
#include "sim/foundation/array.hpp"
#include "sim/foundation/dictionary.hpp"
#include "tests/device_fixture.hpp"

namespace sim {
namespace {

class StrictWorld : public DeviceTest {
 protected:
  // Runs `body` in SpringBoard and answers the crash line that came of it, if any.
  std::string crash(const std::function<void(Process&)>& body) {
    Process& process = booted();
    calls.all.clear();
    device.callback(process, [&] { body(process); });
    for (const auto& call : calls.all)
      if (call.starts_with("crash: ")) return call.substr(7);
    return "none";
  }
};

TEST_F(StrictWorld, AnUnknownSelectorEndsTheProcess) {
  EXPECT_EQ(crash([](Process& process) {
              process.send(makeString(process, "x").get(),
                           "objectAtIndex:", {Value::integer(Kind::ULong, 0)});
            }),
            "-[NSString objectAtIndex:]: unrecognized selector");
  EXPECT_EQ(device.springBoard(), nullptr);
}

TEST_F(StrictWorld, NilAnswersNothing) {
  EXPECT_EQ(crash([](Process& process) { EXPECT_EQ(process.send(nullptr, "anything").bits, 0u); }),
            "none");
}

TEST_F(StrictWorld, AReleaseTooManyIsFound) {
  EXPECT_EQ(crash([](Process& process) {
              const auto string = makeString(process, "x");
              string->libraryRetain();
              string->libraryRelease();
              string->libraryRelease();
            }),
            "\"x\" released once more than it was retained");
}

TEST_F(StrictWorld, AFreedObjectIsKnownByItsAddress) {
  EXPECT_EQ(crash([](Process& process) {
              Address address = 0;
              {
                const auto string = makeString(process, "x");
                address = string->address;
              }
              process.object(address);
            }),
            "use of a freed NSString");
}

TEST_F(StrictWorld, AnArrayWithoutCallbacksDoesNotKeepItsElements) {
  EXPECT_EQ(crash([](Process& process) {
              const auto array = process.make<NSMutableArray>("NSMutableArray", false);
              {
                const auto string = makeString(process, "x");
                array->add(string.get());
              }
              array->at(0);
            }),
            "use of a freed NSString");
}

TEST_F(StrictWorld, AnArgumentOfAnotherClassIsRefused) {
  EXPECT_EQ(crash([](Process& process) {
              const auto array = process.make<NSArray>("NSArray");
              process.send(makeString(process, "x").get(),
                           "isEqualToString:", {Value::object(array->address)});
            }),
            "<NSArray> passed where its class does not fit");
}

TEST_F(StrictWorld, ADictionaryRefusesNil) {
  EXPECT_EQ(
      crash([](Process& process) {
        const auto dictionary = process.make<NSMutableDictionary>("NSMutableDictionary");
        process.send(dictionary.get(), "setObject:forKey:", {Value::nil(), text(process, "key")});
      }),
      "-[NSMutableDictionary setObject:forKey:] with nil");
}

TEST_F(StrictWorld, AReferenceThatNobodyNeedsIsALeakToo) {
  Process& process = booted();
  auto& controller = process.shared<Object>("SBIconController");
  const Address kept = process.library().allocate(process.library().pointerSize());
  process.library().writePointer(kept, controller.address);
  EXPECT_EQ(process.leaks(), std::vector<std::string>());
  controller.libraryRetain();
  EXPECT_EQ(process.leaks(),
            (std::vector<std::string>{"<SBIconController> (held, though the platform keeps it)"}));
}

TEST_F(StrictWorld, ACrashedProcessLeavesTheOthersAlone) {
  device.state.apps.push_back({"com.example.notes", "Notes"});
  booted();
  device.startApp("com.example.notes");
  Process& notes = *device.process("com.example.notes");
  EXPECT_FALSE(device.callback(notes, [] { throw Fault("a mistake"); }));
  EXPECT_EQ(device.process("com.example.notes"), nullptr);
  EXPECT_NE(device.springBoard(), nullptr);
}

// Under the address sanitizer: what the work holds belongs to the process.
TEST_F(StrictWorld, WorkThatItsProcessDiesOfIsLetGoOfBeforeTheProcess) {
  Process& board = booted();
  device.enqueue(&board, [&board, held = makeString(board, "held by the work")] {
    board.device.callback(board, [] { throw Fault("a mistake"); });
  });
  device.drain();
  EXPECT_EQ(device.springBoard(), nullptr);
  device.bootSpringBoard();
  EXPECT_NE(device.springBoard(), nullptr);
}

// BOOL taken for 32 bits would show here first.
TEST_F(StrictWorld, AddedMethodsHaveTheTypesThatThePlatformDeclares) {
  const std::string selector = "alertViewShouldEnableFirstOtherButton:";
  EXPECT_EQ(crash([&](Process& process) {
              const char wrong[] = "i@:@";
              const Address types = process.library().allocate(sizeof wrong);
              process.library().write(types, wrong, sizeof wrong);
              process.callFunction(
                  "class_addMethod",
                  {Value::of(Kind::Class, process.findClass("SBMediaController")->address),
                   Value::of(Kind::Selector, process.selector(selector)),
                   Value::of(Kind::Pointer, 0x1000), Value::of(Kind::CString, types)});
            }),
            selector + " is added with other types than the platform declares");
}

// ---- Hooks

TEST_F(StrictWorld, AHookOnAMissingMethodLeavesTheSlotEmpty) {
  Process& process = booted();
  const Address slot = process.library().allocate(8);
  process.hookMethod(process.findClass("SBMediaController"), "noSuchMethod", 0x1000, slot);
  process.hookMethod(nullptr, "init", 0x1000, slot);
  EXPECT_EQ(process.library().readPointer(slot), 0u);
}

// Another developer's code on the same method, installed after ours: it is what the platform calls,
// and we are what it calls.
class OtherTweak : public StrictWorld {
 protected:
  std::vector<std::string> order;
  Address slot = 0;

  // Hooks a method with code that notes its name and passes the call on.
  void hook(Process& process, const std::string& className, const std::string& selector) {
    slot = process.library().allocate(8);
    auto code = std::make_shared<NativeCode>();
    code->name = selector;
    code->signature = process.findClass(className)->find(selector)->signature;
    code->relay = true;
    code->run = [this](Invocation& call) {
      order.push_back("other tweak");
      std::vector<Value> all{Value::object(call.self->address),
                             Value::of(Kind::Selector, call.process.selector(call.name))};
      all.insert(all.end(), call.arguments.begin(), call.arguments.end());
      return call.process.library().call(call.process.library().readPointer(slot), Kind::Void, all);
    };
    process.hookMethod(process.findClass(className), selector, process.library().expose(code, true),
                       slot);
  }
};

TEST_F(OtherTweak, HookingAfterUsItStillReachesUsAndThePlatform) {
  Process& process = booted();
  hook(process, "SBMediaController", "setNowPlayingInfo:");
  calls.all.clear();
  device.callback(process, [&] {
    process.send(&process.sharedInstance(*process.findClass("SBMediaController")),
                 "setNowPlayingInfo:", {Value::nil()});
  });
  EXPECT_EQ(order, std::vector<std::string>{"other tweak"});
  EXPECT_EQ(calls.all, (std::vector<std::string>{"-[SBMediaController setNowPlayingInfo:nil]",
                                                 "notify_post(\"RjZoLhphi82WYz\")"}));
}

}  // namespace
}  // namespace sim
