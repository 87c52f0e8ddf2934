// Views over platform objects. A view is one borrowed pointer: copying it costs nothing and owns
// nothing, and a view of nothing (nil) answers every message with zero. A reference that is owned
// is a type of its own, Retained. Stands in for the compiler's own counting of references; leaves
// out weak ones.
#pragma once
#include <utility>

#include "platform/c_abi.hpp"
#include "platform/literal.hpp"

namespace platform {

struct Object {
  id raw = nullptr;

  explicit operator bool() const { return raw != nullptr; }
  friend bool operator==(Object a, Object b) { return a.raw == b.raw; }
};

template <class T>
inline constexpr bool isView = std::is_base_of_v<Object, T>;

// The same object seen as another class; nothing is checked.
template <class View>
View as(Object object) {
  static_assert(isView<View> && sizeof(View) == sizeof(Object), "a view holds one pointer");
  View view;
  view.raw = object.raw;
  return view;
}
template <class View = Object>
View view(id object) {
  return as<View>(Object{object});
}

// A class, as the receiver of class messages.
struct ClassObject : Object {
  Class cls() const { return reinterpret_cast<Class>(raw); }
};

// Looks a class up by name, afresh at each call. Stands on objc_getClass; nil if it is missing.
template <Literal Name>
ClassObject classNamed() {
  return view<ClassObject>(reinterpret_cast<id>(objc_getClass(kText<Name>.text)));
}

// Owns one reference and releases it at the end of its life. Copies retain.
template <class View>
class Retained {
 public:
  constexpr Retained() = default;
  // Takes over a reference that the caller owns (the result of new, alloc/init, copy).
  static Retained adopt(View object) {
    Retained owner;
    owner.object_ = object;
    return owner;
  }
  // Adds a reference of its own to a borrowed object.
  static Retained retain(View object) {
    objc_retain(object.raw);
    return adopt(object);
  }
  Retained(const Retained& other) : object_(other.object_) { objc_retain(object_.raw); }
  Retained(Retained&& other) noexcept : object_(std::exchange(other.object_, View{})) {}
  Retained& operator=(Retained other) {
    std::swap(object_, other.object_);
    return *this;
  }
  ~Retained() {
    if (object_) objc_release(object_.raw);
  }

  View get() const { return object_; }
  const View* operator->() const { return &object_; }
  explicit operator bool() const { return static_cast<bool>(object_); }
  // Gives the reference up to the caller, unreleased.
  [[nodiscard]] View leak() { return std::exchange(object_, View{}); }

 private:
  View object_{};
};

// How an associated object is held (objc_AssociationPolicy).
enum class Association : uintptr_t { assign = 0, retain = 0x301, copy = 0x303 };

}  // namespace platform
