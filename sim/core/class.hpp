// Classes of a simulated process and the implementations behind their methods. Stands in for
// libobjc's own structures; leaves out protocols, method caches, and classes that change their
// superclass.
#pragma once
#include <functional>
#include <map>
#include <memory>
#include <set>
#include <string>
#include <unordered_map>
#include <vector>

#include "sim/core/framework.hpp"
#include "sim/core/object.hpp"

namespace sim {

// Reads arguments in the calling convention of whoever called.
class ArgumentSource {
 public:
  virtual ~ArgumentSource() = default;
  // The next argument of that type.
  virtual Value next(Kind kind) = 0;
  // From here on the arguments belong to the variadic part.
  virtual void beginVariadic() = 0;
};

enum class Caller : std::uint8_t { Library, Platform };

// One call that reached the platform.
struct Invocation {
  Process& process;
  Object* self = nullptr;   // null for C functions
  const std::string& name;  // selector or function; borrowed for the call
  std::vector<Value> arguments{};
  ArgumentSource* rest = nullptr;  // the variadic part, if the caller passed one
  Caller caller = Caller::Platform;

  Object* object(std::size_t index) const;    // an object argument, or null
  std::string text(std::size_t index) const;  // a C string argument
  Object* nextVariadicObject() const;         // null at the end of the list
};

using Native = std::function<Value(Invocation&)>;
using Describe = std::function<std::string(const Invocation&)>;

// Platform code: a method of a simulated class, or a C function.
struct NativeCode {
  std::string name;  // selector or function
  Signature signature{};
  Native run{};
  bool effect = false;                      // traced even without --calls all
  bool relay = false;                       // never traced: plumbing, or traced by what it leads to
  Describe describe{};                      // overrides how the trace shows it
  Framework framework = Framework::Always;  // of a C function: what exports it
};

// What a method or function runs: platform code, or code inside the process's library.
struct Implementation {
  std::shared_ptr<const NativeCode> native{};
  Address library = 0;
  // Of a hook: what the platform itself has there, below all hooks.
  std::shared_ptr<const NativeCode> hooked{};

  const std::shared_ptr<const NativeCode>& platform() const { return hooked ? hooked : native; }
};

struct Method {
  std::string selector;
  Signature signature{};
  Implementation implementation{};
  // Added when it is first sent, where that class is: not answered to respondsToSelector:.
  std::string resolvedBy{};
  std::string types{};  // as class_addMethod was given them; empty: the platform's own
};

class Class final : public Object {
 public:
  using Factory = std::function<Object*(Process&)>;

  Class(Process& process, std::string name, Class* superclass, bool meta)
      : Object(process), name(std::move(name)), superclass(superclass), meta(meta) {}

  std::string description() const override { return name; }
  bool immortal() const override { return true; }

  // The method that instances run, searched up the chain; null if none answers. Borrowed.
  Method* find(const std::string& selector);
  // Takes a method away from instances, their class and whatever inherits it from here.
  void deny(const std::string& selector);
  // Only the class's own.
  Method* own(const std::string& selector);
  bool inherits(const Class& ancestor) const;
  // Its instance variables that others reach by their place, inherited ones first: how many words
  // an object has (0: none that anybody could reach), and which one is of that name.
  std::size_t instanceSize() const;
  std::optional<std::size_t> variableIndex(const std::string& name) const;

  std::string name;
  Class* superclass;
  bool meta;
  Class* instances = nullptr;  // of a metaclass: the class whose class methods it holds
  Factory factory{};           // makes an instance; inherited
  std::unordered_map<std::string, Method> methods;
  std::vector<std::string> variables;             // its own, a word each, behind the class
  std::map<std::string, std::string> properties;  // name -> attributes
  bool mainThreadOnly = false;                    // it and its objects take messages there alone
  std::set<std::string> denied;                   // not even inherited
};

}  // namespace sim
