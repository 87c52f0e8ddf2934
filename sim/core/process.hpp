// One process of the simulated device: its heap, its classes, its copy of the library. Stands in
// for an app's, a daemon's or SpringBoard's process; leaves out the sandbox, memory limits, and
// threads beside the one that has the turn.
#pragma once
#include <map>
#include <memory>
#include <optional>
#include <set>
#include <string>
#include <unordered_map>
#include <vector>

#include "sim/core/class.hpp"
#include "sim/core/clock.hpp"
#include "sim/core/library.hpp"

namespace sim {

class Device;
class HookedCall;
enum class Neighbour : std::uint8_t;

class Process {
 public:
  // A daemon has a name in place of a bundle identifier, and no UIKit.
  enum class Program : std::uint8_t { App, Daemon };
  Process(Device& device, std::string identifier, Program program = Program::App);
  ~Process();
  Process(const Process&) = delete;
  Process& operator=(const Process&) = delete;

  Device& device;
  const std::string identifier;             // the bundle identifier, also its name in traces
  const bool isDaemon;                      // without a bundle identifier: that is its name
  const std::set<std::string> addOns;       // that were there when it started
  const std::set<std::string> categories;   // of the app's own, by the class
  const std::optional<double> selectorsOf;  // the version whose methods classes have; none: all
  const Neighbour neighbour;                // another extension on the library's hooks
  const std::set<std::string> missingClasses;
  const std::set<std::pair<std::string, std::string>> missingMethods;  // class and selector
  bool isSpringBoard() const;
  Thread thread = Thread::Main;  // of the running callback

  // Loads the library and runs its constructor, as one part of the current callback.
  void loadLibrary();
  Library& library() { return *library_; }
  bool hasLibrary() const { return library_ != nullptr; }

  // ---- Classes
  Class* findClass(const std::string& name);     // null if this process has none of that name
  Class& requireClass(const std::string& name);  // platform code: must be there, seen or not
  Class& createClass(const std::string& name, Class* superclass);  // with its metaclass
  void hideClass(Class& cls);                                      // only platform code finds it
  void registerClass(Class& cls);                                  // now findClass sees it
  void removeClass(const std::string& name);                       // its objects stay
  // Now findClass sees it if its framework is loaded, else once that is.
  void registerClassOf(Framework framework, Class& cls);
  // ---- Frameworks
  // Loads a framework if it is not there yet; false if it cannot be loaded.
  bool load(Framework framework);
  bool has(Framework framework) const { return frameworks_.has(framework); }
  // An exported C function or variable by name, as dlsym finds it: of one framework, or of all
  // that are loaded. 0 if there is none.
  Address symbol(const std::string& name, std::optional<Framework> only = std::nullopt);

  Address selector(const std::string& name);
  const std::string& selectorName(Address selector) const;  // Fault if it is none

  // ---- Objects
  // A new object of a simulated class, with no reference yet but the one returned.
  template <class T, class... A>
  Ref<T> make(const std::string& className, A&&... arguments) {
    auto* object = new T(*this, std::forward<A>(arguments)...);
    adopt(object, requireClass(className));
    return Ref<T>(object);
  }
  // Enters an object into the heap: gives it its address and class.
  void adopt(Object* object, Class& isa, Address address = 0);
  // +alloc: an instance by the class's factory.
  Ref<Object> allocateInstance(Class& cls);
  // The object at an address the library passed; null for 0. Fault if there is none (any more).
  Object* object(Address address);
  // The one instance that platform code keeps under a name, made at first use.
  template <class T>
  T& shared(const std::string& className) {
    Ref<Object>& slot = shared_[className];
    if (!slot) slot = make<T>(className);
    return static_cast<T&>(*slot);
  }
  // Puts another object in its place; the one before lives on only if somebody else holds it.
  void replaceShared(const std::string& className, Ref<Object> object) {
    shared_[className] = std::move(object);
  }
  // The same one, for a class known only at run time.
  Object& sharedInstance(Class& cls);
  void free(Object& object);     // its last reference went: dealloc, then destruction
  void destroy(Object& object);  // what NSObject's dealloc does in the end
  Ref<Object> autorelease(Ref<Object> object);  // also returns it
  // A Fault met where none may be thrown (the end of a reference) strikes at the next chance.
  void deferFault(const std::string& reason);
  void throwDeferredFault();

  Address pushPool();
  void popPool(Address pool);
  std::size_t pools() const { return pools_.size(); }

  // ---- Calls
  // Sends a message as platform code does. A nil receiver answers zero.
  Value send(Object* receiver, const std::string& selector, std::vector<Value> arguments = {});
  // The same to a receiver that may not answer: then nothing happens.
  Value sendIfAnswered(Object* receiver, const std::string& selector,
                       std::vector<Value> arguments = {});
  // The library sends a message: receiver, selector and arguments still to be read.
  Value messageFromLibrary(ArgumentSource& source);
  // The library calls platform code.
  Value callFromLibrary(const std::shared_ptr<const NativeCode>& code, bool isMethod,
                        ArgumentSource& source);
  // The library calls a C function by its name (one of the imports).
  Value functionFromLibrary(const std::string& name, ArgumentSource& source);
  // Platform code calls a C function that the library may have replaced.
  Value callFunction(const std::string& name, std::vector<Value> arguments,
                     Caller caller = Caller::Platform);
  // Runs what stands behind a method or function, on either side.
  Value callImplementation(const Implementation& implementation, const Signature& signature,
                           Object* self, const std::string& name, std::vector<Value> arguments,
                           ArgumentSource* rest, Caller caller);
  // Runs a native with its trace line.
  Value runNative(const NativeCode& code, Invocation& invocation);

  // What respondsToSelector: says.
  bool responds(Object& object, const std::string& selector);

  // ---- Hooks (what Substrate does)
  std::vector<HookedCall*> hookedCalls;  // that are running, the innermost last; borrowed
  void hookMethod(Class* cls, const std::string& selector, Address replacement, Address slot);
  void hookFunction(Address function, Address replacement, Address slot);
  // The same, by another library in the process: its code is given what it is to call as its
  // previous implementation. Nothing where the method or function is missing.
  using Replace = std::function<NativeCode(const Method& replaced)>;
  void hookMethod(Class* cls, const std::string& selector, const Replace& replace);
  void hookFunction(const std::string& name, const Replace& replace);
  // The name of the function that symbol() gave out at that address; "nil" for 0.
  std::string functionName(Address function) const;

  // ---- The platform's own bookkeeping for this process
  std::vector<Ref<Object>> kept;    // objects that the process's own code keeps
  std::set<Clock::TimerId> timers;  // cancelled when the process ends
  struct Observer {
    std::string name;
    Address callback = 0;
    bool darwin = true;
  };
  std::vector<Observer> observers;  // in order of registration
  std::uint64_t number = 0;         // the device's count of process starts
  std::uint64_t activity = 0;       // counts what may have changed who refers to what
  bool ended = false;               // nothing of it runs any more

  // Objects whose references by the library nothing of the library's reaches any more. Looked for
  // only if the process has been active since the last time.
  const std::vector<std::string>& leaks();

 private:
  Value dispatch(Object& receiver, const std::string& selector, ArgumentSource* source,
                 std::vector<Value>* arguments, Caller caller);
  void requireThread(Object& receiver, const Method& method);
  // What a hook of that method calls as its previous implementation.
  static Implementation previousOf(Class& cls, const std::string& selector, const Method& found);
  Value runWatched(const NativeCode& code, Invocation& invocation, bool passedOn);
  Value runInjected(const NativeCode& code, Invocation& invocation);
  Object* literal(Address address);
  std::vector<std::string> foundLeaks();
  std::vector<std::string> sharedLeaks() const;
  Address platformVariable(const std::string& name, std::optional<Framework> only);
  bool isExported(Framework by, std::optional<Framework> only) const;
  void install(const std::string& className);
  struct Function;
  Function* function(const std::string& name);

  // The platform's classes and functions are made at their first use: no process needs many.
  std::vector<bool> installed_;  // by the index of the definition
  std::unordered_map<std::string, Class*> classes_;
  std::unordered_map<std::string, Class*> hiddenClasses_;
  Frameworks frameworks_;
  std::multimap<Framework, Class*> classesOfLateFrameworks_;
  std::unordered_map<Address, Object*> heap_;
  std::unordered_map<Address, const Class*> freed_;  // to name the culprit
  std::vector<std::vector<Ref<Object>>> pools_;
  std::map<std::string, Ref<Object>> shared_;
  struct Function {
    std::shared_ptr<const NativeCode> native;
    Address exposed = 0;
    Implementation implementation{};  // what runs, under all hooks that there are
  };
  std::unordered_map<std::string, Function> functions_;
  std::map<std::string, Address> variables_;
  std::map<Address, Ref<Object>> literals_;  // constant strings in the library's data
  std::vector<std::string> leaks_;
  std::uint64_t leaksOf_ = 0;  // the activity that they are of
  std::string deferredFault_;
  std::vector<std::unique_ptr<Object>> transients_;  // stack blocks met in the current callback
  std::unique_ptr<Library> library_;
};

}  // namespace sim
