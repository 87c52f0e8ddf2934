// Simulated platform objects and their reference counts. Stands in for libobjc's counting and
// associations; leaves out weak references, and counts that overflow.
#pragma once
#include <map>
#include <optional>
#include <string>
#include <utility>

#include "sim/core/value.hpp"

namespace sim {

class Class;
class Process;

// The threads that a callback can come on: the main one, with UIKit and the run loop, or one of the
// platform's own.
enum class Thread : std::uint8_t { Main, Other };

// One object of a process. References of the library and of the platform are counted apart, so that
// a release too many by the library is found at once, whoever else holds the object.
class Object {
 public:
  explicit Object(Process& process) : process(process) {}
  virtual ~Object();
  Object(const Object&) = delete;
  Object& operator=(const Object&) = delete;

  // How traces show it as an argument: "<NSTimer>" unless a class knows better.
  virtual std::string description() const;
  // The app it belongs to, shown in round brackets behind its class; empty for none.
  virtual std::string owner() const { return {}; }
  // -isEqual:
  virtual bool equals(const Object& other) const { return this == &other; }
  // Constant strings, classes and global blocks are never counted nor freed.
  virtual bool immortal() const { return false; }

  // The library's references. Releasing one that it does not own is a Fault.
  void libraryRetain();
  void libraryRelease();
  long libraryReferences() const { return libraryReferences_; }

  // The platform's references; use Ref instead.
  void retain() { ++platformReferences_; }
  void release();

  void associate(Address key, Object* value, std::uint64_t policy);
  Object* associated(Address key) const;  // borrowed
  bool associatedAtomically(Address key) const;
  void dropAssociations();

  Process& process;
  Class* isa = nullptr;
  Address address = 0;
  // For what changes without locks: the thread that made it, the only one that may send it
  // messages.
  std::optional<Thread> onlyOn{};

 private:
  struct Associated {
    Object* value;
    bool held;
    bool atomic;
  };
  void freeIfUnreferenced();

  long libraryReferences_ = 0;
  long platformReferences_ = 0;
  bool deallocating_ = false;
  std::map<Address, Associated> associations_;
};

// True while a process's whole heap goes: references between its objects no longer count.
extern thread_local bool heapIsGoing;

// A reference held by the platform.
template <class T>
class Ref {
 public:
  Ref() = default;
  Ref(T* object) : object_(object) {  // NOLINT(google-explicit-constructor): as raw pointers do
    if (object_) object_->retain();
  }
  Ref(const Ref& other) : Ref(other.object_) {}
  Ref(Ref&& other) noexcept : object_(std::exchange(other.object_, nullptr)) {}
  template <class U>
  requires std::is_convertible_v<U*, T*> Ref(const Ref<U>& other)
      : Ref(other.get()) {}  // NOLINT(google-explicit-constructor)
  Ref& operator=(Ref other) {
    std::swap(object_, other.object_);
    return *this;
  }
  ~Ref() {
    if (object_ && !heapIsGoing) object_->release();
  }

  T* get() const { return object_; }
  T* operator->() const { return object_; }
  T& operator*() const { return *object_; }
  explicit operator bool() const { return object_ != nullptr; }

 private:
  T* object_ = nullptr;
};

// The result of a method of the alloc/new/copy families: the caller owns it.
template <class T>
struct Owned {
  Ref<T> object;
};

}  // namespace sim
