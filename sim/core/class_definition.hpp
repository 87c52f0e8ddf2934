// Templates of simulated classes: each process makes its own classes from them. Stands in for the
// metadata in the system's images, which the runtime reads at their load; leaves out methods that
// nobody sends.
#pragma once
#include <type_traits>

#include "sim/core/bind.hpp"
#include "sim/core/versions.hpp"

namespace sim {

// The processes that have a class.
struct Home {
  enum class Where : std::uint8_t { Everywhere, SpringBoard, App, AddOn } where = Where::Everywhere;
  std::string name{};  // the app's identifier, or the add-on

  static Home everywhere() { return {}; }
  static Home springBoard() { return {Where::SpringBoard, {}}; }
  static Home app(std::string identifier) { return {Where::App, std::move(identifier)}; }
  static Home addOn(std::string addOn) { return {Where::AddOn, std::move(addOn)}; }
};

class ClassDefinition {
 public:
  // Instances are C++ objects of type T, made with T(Process&) by +alloc.
  template <class T>
  static ClassDefinition of(std::string name, std::string superclass, Home home) {
    ClassDefinition definition(std::move(name), std::move(superclass), std::move(home));
    if constexpr (std::is_constructible_v<T, Process&>)
      definition.factory_ = [](Process& process) -> Object* { return new T(process); };
    return definition;
  }

  // An instance method: a member function of T.
  template <class F>
  ClassDefinition& method(std::string selector, F function) {
    return add(bindMethod(std::move(selector), function), false);
  }
  // A class method: a function of (Class&, arguments…).
  template <class F>
  ClassDefinition& classMethod(std::string selector, F function) {
    return add(bindClassMethod(std::move(selector), function), true);
  }
  // A method given as a whole, for variadic ones.
  ClassDefinition& code(NativeCode code, bool onClass = false) {
    return add(std::move(code), onClass);
  }
  // The method added last is an effect: always traced.
  ClassDefinition& effect() {
    last_->effect = true;
    return *this;
  }
  // The method added last is shown so in traces; implies effect.
  ClassDefinition& effect(Describe describe) {
    last_->describe = std::move(describe);
    return effect();
  }
  // Which threads its objects and the class itself take messages on. Unless said, what belongs to
  // SpringBoard, an add-on or an app is the main thread's, and what every process has anybody's.
  ClassDefinition& mainThreadOnly(bool only = true) {
    mainThreadOnly_ = only;
    return *this;
  }
  // The method added last exists only with that add-on.
  ClassDefinition& onlyWithAddOn(std::string addOn);
  // The method added last is one of these versions, where processes have only those of their own.
  ClassDefinition& on(Versions versions);
  // The method added last is, on these versions, only made by that class of an add-on's.
  ClassDefinition& resolvedBy(std::string className, Versions versions);

  // The whole class is one of these versions.
  ClassDefinition& classOn(Versions versions);
  // Instance variables that others reach by their place in its objects, a pointer each.
  ClassDefinition& variables(std::vector<std::string> names);
  // The framework that the class comes with.
  ClassDefinition& partOf(Framework framework);

  // Adds the class to a process that is its home, unless what the process found at its start says
  // that it is missing.
  void install(Process& process) const;

  const std::string& name() const { return name_; }
  const Home& home() const { return home_; }

 private:
  struct Row {
    std::shared_ptr<NativeCode> code;
    bool onClass;
    std::string addOn;
    Versions versions{};
    std::string resolvedBy{};
    Versions resolvedOn{};
  };
  ClassDefinition(std::string name, std::string superclass, Home home)
      : name_(std::move(name)),
        superclass_(std::move(superclass)),
        home_(std::move(home)),
        mainThreadOnly_(home_.where != Home::Where::Everywhere) {}
  ClassDefinition& add(NativeCode code, bool onClass);

  std::string name_;
  std::string superclass_;
  Home home_;
  Versions versions_{};
  Framework framework_ = Framework::Always;
  Class::Factory factory_{};
  std::vector<std::string> variables_{};
  std::vector<Row> rows_;
  NativeCode* last_ = nullptr;
  bool mainThreadOnly_;
};

// The master list, superclasses first.
const std::vector<ClassDefinition>& classDefinitions();
// The indices in that list; a class may be another one in another process.
const std::vector<std::size_t>& classDefinitionsOf(const std::string& name);
// Whether scenarios may name that class.
bool isKnownClass(const std::string& name);
// The platform's C functions.
const std::vector<std::shared_ptr<const NativeCode>>& platformFunctions();

}  // namespace sim
