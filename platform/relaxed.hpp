// A variable that several threads touch without caring for the order: each sees some value that was
// stored whole. Costs what a plain variable costs. Stands in for std::atomic; leaves out every
// order but the relaxed one, and everything but loading and storing.
#pragma once

namespace platform {

template <class T>
class Relaxed {
 public:
  constexpr Relaxed() = default;
  T load() const { return __atomic_load_n(&value_, __ATOMIC_RELAXED); }
  void store(T value) { __atomic_store_n(&value_, value, __ATOMIC_RELAXED); }

 private:
  T value_{};
};

}  // namespace platform
