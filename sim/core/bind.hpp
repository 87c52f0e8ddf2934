// Turns C++ functions into platform code: signatures, argument checks and ownership of results come
// from the C++ types. Stands in for the compiler's knowledge of a method that platform code is
// compiled with; leaves out structures, floats, and integers of 16 bits, which no method here
// takes.
#pragma once
#include "sim/core/process.hpp"

namespace sim {

// ---- C++ type -> Kind, and conversion from a Value. An object argument of the wrong class is a
// Fault, as a message it does not understand would be on the phone.
template <class T>
struct Passing;

#define SIM_PASS_INTEGER(type, kindName)                                                   \
  template <>                                                                              \
  struct Passing<type> {                                                                   \
    static constexpr Kind kind = Kind::kindName;                                           \
    static type from(Process&, const Value& v) { return static_cast<type>(v.bits); }       \
    static Value to(type v) { return Value::integer(kind, static_cast<std::int64_t>(v)); } \
  };
SIM_PASS_INTEGER(int, Int32)
SIM_PASS_INTEGER(unsigned, UInt32)
SIM_PASS_INTEGER(long, Long)
SIM_PASS_INTEGER(unsigned long, ULong)
SIM_PASS_INTEGER(unsigned char, UInt8)
#undef SIM_PASS_INTEGER

template <>
struct Passing<bool> {
  static constexpr Kind kind = Kind::Bool;
  static bool from(Process&, const Value& v) { return v.asBool(); }
  static Value to(bool v) { return Value::boolean(v); }
};
template <>
struct Passing<double> {
  static constexpr Kind kind = Kind::Double;
  static double from(Process&, const Value& v) { return v.asReal(); }
  static Value to(double v) { return Value::real(v); }
};
template <>
struct Passing<Selector> {
  static constexpr Kind kind = Kind::Selector;
  static Selector from(Process&, const Value& v) { return {v.bits}; }
  static Value to(Selector v) { return Value::of(kind, v.address); }
};
template <>
struct Passing<Pointer> {
  static constexpr Kind kind = Kind::Pointer;
  static Pointer from(Process&, const Value& v) { return {v.bits}; }
  static Value to(Pointer v) { return Value::of(kind, v.address); }
};
template <>
struct Passing<std::string> {
  static constexpr Kind kind = Kind::CString;
  static std::string from(Process& process, const Value& v) {
    return process.library().readText(v.bits);
  }
};
template <>
struct Passing<Class*> {
  static constexpr Kind kind = Kind::Class;
  static Class* from(Process& process, const Value& v) {
    Object* object = process.object(v.bits);
    auto* cls = dynamic_cast<Class*>(object);
    if (object && !cls) throw Fault(object->description() + " used as a class");
    return cls;
  }
  static Value to(Class* v) { return Value::of(kind, v ? v->address : 0); }
};
template <class T>
requires std::is_base_of_v<Object, T>
struct Passing<T*> {
  static constexpr Kind kind = Kind::Object;
  static T* from(Process& process, const Value& v) {
    Object* object = process.object(v.bits);
    auto* typed = dynamic_cast<T*>(object);
    if (object && !typed)
      throw Fault(object->description() + " passed where its class does not fit");
    return typed;
  }
  // A borrowed result.
  static Value to(T* v) { return Value::object(v ? v->address : 0); }
};

// ---- Results
template <class R>
struct Returning {
  static constexpr Kind kind = Passing<R>::kind;
  static Value settle(Invocation&, const R& value) { return Passing<R>::to(value); }
};
// Autoreleased.
template <class T>
struct Returning<Ref<T>> {
  static constexpr Kind kind = Kind::Object;
  static Value settle(Invocation& invocation, const Ref<T>& value) {
    if (!value) return Value::nil();
    invocation.process.autorelease(Ref<Object>(value.get()));
    return Value::object(value->address);
  }
};
// Owned by the caller; platform code gets it autoreleased.
template <class T>
struct Returning<Owned<T>> {
  static constexpr Kind kind = Kind::Object;
  static Value settle(Invocation& invocation, const Owned<T>& value) {
    if (!value.object) return Value::nil();
    if (invocation.caller == Caller::Library)
      value.object->libraryRetain();
    else
      invocation.process.autorelease(Ref<Object>(value.object.get()));
    return Value::object(value.object->address);
  }
};

template <class R>
constexpr Kind resultKind() {
  if constexpr (std::is_void_v<R>)
    return Kind::Void;
  else
    return Returning<R>::kind;
}

namespace detail {

template <class R, class... A, class F, std::size_t... I>
Value apply(Invocation& invocation, F&& function, std::index_sequence<I...>) {
  if constexpr (std::is_void_v<R>) {
    function(Passing<A>::from(invocation.process, invocation.arguments[I])...);
    return Value::none();
  } else {
    return Returning<R>::settle(
        invocation, function(Passing<A>::from(invocation.process, invocation.arguments[I])...));
  }
}

}  // namespace detail

namespace detail {

// `call` takes a T& and the arguments.
template <class T, class R, class... A, class F>
NativeCode methodCode(std::string selector, F call) {
  Native run = [call](Invocation& invocation) {
    auto* self = dynamic_cast<T*>(invocation.self);
    if (!self)
      throw Fault(invocation.name + " reached " + invocation.self->description() +
                  ", which is of another class");
    return apply<R, A...>(
        invocation, [&](A... a) -> R { return call(*self, a...); },
        std::index_sequence_for<A...>{});
  };
  return {std::move(selector), {resultKind<R>(), {Passing<A>::kind...}, false}, std::move(run)};
}

}  // namespace detail

// An instance method written as a member function.
template <class T, class R, class... A>
NativeCode bindMethod(std::string selector, R (T::*method)(A...)) {
  return detail::methodCode<T, R, A...>(
      std::move(selector), [method](T& self, A... a) -> R { return (self.*method)(a...); });
}
template <class T, class R, class... A>
NativeCode bindMethod(std::string selector, R (T::*method)(A...) const) {
  return detail::methodCode<T, R, A...>(
      std::move(selector), [method](T& self, A... a) -> R { return (self.*method)(a...); });
}

// A class method written as a function of the class that received it.
template <class R, class... A>
NativeCode bindClassMethod(std::string selector, R (*method)(Class&, A...)) {
  Native run = [method](Invocation& invocation) {
    auto& self = dynamic_cast<Class&>(*invocation.self);
    return detail::apply<R, A...>(
        invocation, [&](A... a) -> R { return method(self, a...); },
        std::index_sequence_for<A...>{});
  };
  return {std::move(selector), {resultKind<R>(), {Passing<A>::kind...}, false}, std::move(run)};
}

// A C function.
template <class R, class... A>
NativeCode bindFunction(std::string name, R (*function)(Process&, A...)) {
  Native run = [function](Invocation& invocation) {
    return detail::apply<R, A...>(
        invocation, [&](A... a) -> R { return function(invocation.process, a...); },
        std::index_sequence_for<A...>{});
  };
  return {std::move(name), {resultKind<R>(), {Passing<A>::kind...}, false}, std::move(run)};
}

}  // namespace sim
