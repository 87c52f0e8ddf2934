// C++ callables as the platform's blocks. Stands in for what compilers that know blocks make of
// them; leaves out global blocks, signatures, and variables that a block shares with its function
// (`__block`).
//
// A Block is a block literal on the stack, laid out as the compilers lay theirs out. Whoever keeps
// it copies it (the `copy` message, dispatch_async, a method that takes a completion handler); the
// copy holds copies of the callable's captures and destroys them when it dies. Captures that are
// objects must be Retained to be kept alive: a plain view is copied as the pointer that it is.
#pragma once
#include <cstring>
#include <new>

#include "platform/object.hpp"

namespace platform {

namespace detail {

enum BlockFlags : int32_t {
  kBlockHasCopyDispose = 1 << 25,
  kBlockHasConstructor = 1 << 26,
};

struct BlockHeader {
  const void* isa;
  int32_t flags;
  int32_t reserved;
  void (*invoke)();
  const void* descriptor;
};

struct BlockDescriptor {
  uintptr_t reserved;
  uintptr_t size;
  void (*copy)(void* destination, const void* source);
  void (*dispose)(const void* block);
};

}  // namespace detail

template <class Signature, class Callable>
class BlockLiteral;

template <class R, class... A, class Callable>
class BlockLiteral<R(A...), Callable> {
 public:
  explicit BlockLiteral(Callable callable)
      : header_{_NSConcreteStackBlock, detail::kBlockHasCopyDispose | detail::kBlockHasConstructor,
                0, reinterpret_cast<void (*)()>(&invoke), &kDescriptor},
        callable_(std::move(callable)) {}
  BlockLiteral(const BlockLiteral&) = delete;
  BlockLiteral& operator=(const BlockLiteral&) = delete;

  // The block object. Borrowed; valid while this literal lives, unless copied.
  Object object() { return view<Object>(reinterpret_cast<id>(this)); }

 private:
  static R invoke(BlockLiteral* self, A... arguments) { return self->callable_(arguments...); }
  // The runtime has copied the bytes already: captures are constructed in place over them.
  static void copy(void* destination, const void* source) {
    ::new (&static_cast<BlockLiteral*>(destination)->callable_)
        Callable(static_cast<const BlockLiteral*>(source)->callable_);
  }
  static void dispose(const void* block) {
    static_cast<const BlockLiteral*>(block)->callable_.~Callable();
  }
  static constexpr detail::BlockDescriptor kDescriptor{
      0, sizeof(detail::BlockHeader) + sizeof(Callable), &copy, &dispose};

  detail::BlockHeader header_;
  Callable callable_;
};

// A block of that signature, for example block<void()>([...] { ... }).
template <class Signature, class Callable>
auto block(Callable callable) {
  return BlockLiteral<Signature, Callable>(std::move(callable));
}

// Calls a block that may be nil; nil answers zero.
template <class R = void, class... A>
R invokeBlock(Object block, A... arguments) {
  using Function = R (*)(id, A...);
  if (!block) return R();
  detail::BlockHeader header;
  std::memcpy(&header, block.raw, sizeof header);
  return reinterpret_cast<Function>(header.invoke)(block.raw, arguments...);
}

}  // namespace platform
