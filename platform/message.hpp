// Message sending: the only place that calls objc_msgSend, each time through the exact prototype of
// the method sent. Stands in for what the compiler makes of `[receiver message]`; leaves out
// results that are structures, of which no message here has one, and messages to super, for which
// settings/bundle.hpp has a way of its own.
#pragma once
#include "platform/object.hpp"
#include "platform/selector.hpp"
#include "platform/unrolled.hpp"

namespace platform {

namespace detail {

// What a C++ argument or result is on the platform's side: a view is its pointer, bool is BOOL.
template <class T>
struct Passed {
  using type = T;
};
template <class T>
requires isView<T>
struct Passed<T> {
  using type = id;
};
template <>
struct Passed<bool> {
  using type = BOOL;
};
template <class T>
using PassedAs = typename Passed<T>::type;

template <class T>
[[gnu::always_inline]] inline PassedAs<T> pass(T value) {
  if constexpr (isView<T>)
    return value.raw;
  else
    return static_cast<PassedAs<T>>(value);
}

// R (*)(id, SEL, the first Count of the given types, ...).
template <class... T>
struct Types {};
template <class R, size_t Count, class Taken, class... Left>
struct VariadicPrototype;
template <class R, class... Taken, class... Left>
struct VariadicPrototype<R, 0, Types<Taken...>, Left...> {
  using type = R (*)(id, SEL, Taken..., ...);
};
template <class R, size_t Count, class... Taken, class Next, class... Left>
requires(Count > 0) struct VariadicPrototype<R, Count, Types<Taken...>, Next, Left...>
    : VariadicPrototype<R, Count - 1, Types<Taken..., Next>, Left...> {
};

template <class R>
[[gnu::always_inline]] inline R received(PassedAs<R> value) {
  if constexpr (isView<R>)
    return view<R>(value);
  else if constexpr (std::is_same_v<R, bool>)
    return value != 0;
  else
    return value;
}

}  // namespace detail

// Sends `Name` to `receiver`. The argument types given are the method's own: pass exactly the
// declared integer types. Nil receivers answer zero. Stands on objc_msgSend.
template <Literal Name, class R = void, class... A>
[[gnu::always_inline]] inline R send(Object receiver, A... arguments) {
  static_assert(kText<Name>.count(':') == sizeof...(A), "one argument for each colon");
  using Prototype = detail::PassedAs<R> (*)(id, SEL, detail::PassedAs<A>...);
  const auto method = reinterpret_cast<Prototype>(&objc_msgSend);
  if constexpr (std::is_void_v<R>)
    method(receiver.raw, selector<Name>(), detail::pass(arguments)...);
  else
    return detail::received<R>(method(receiver.raw, selector<Name>(), detail::pass(arguments)...));
}

// Sends a message whose name is known only at run time, as when one is forwarded.
template <class R = void, class... A>
inline R sendNamed(Object receiver, SEL name, A... arguments) {
  using Prototype = R (*)(id, SEL, A...);
  return reinterpret_cast<Prototype>(&objc_msgSend)(receiver.raw, name, arguments...);
}

// Sends several messages in a row where every instruction counts: selectors are registered and the
// messenger's address is looked up once, and each message is one branch.
class Messenger {
 public:
  template <class R, class... A>
  [[gnu::always_inline]] R send(Object receiver, SEL name, A... arguments) const {
    using Prototype = detail::PassedAs<R> (*)(id, SEL, detail::PassedAs<A>...);
    return detail::received<R>(
        reinterpret_cast<Prototype>(address_)(receiver.raw, name, detail::pass(arguments)...));
  }

 private:
  void (*address_)() = bound(&objc_msgSend);
};

// Sends a variadic message. As many arguments as the name has colons belong to the method's
// prototype, the rest is its variadic part, which 64-bit devices pass on the stack. Lists that a
// nil ends must be given one.
template <Literal Name, class R, class... A>
[[gnu::always_inline]] inline R sendVariadic(Object receiver, A... arguments) {
  using Prototype =
      typename detail::VariadicPrototype<detail::PassedAs<R>, kText<Name>.count(':'),
                                         detail::Types<>, detail::PassedAs<A>...>::type;
  const auto method = reinterpret_cast<Prototype>(&objc_msgSend);
  return detail::received<R>(method(receiver.raw, selector<Name>(), detail::pass(arguments)...));
}

}  // namespace platform
