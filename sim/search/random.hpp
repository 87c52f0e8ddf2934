// Random choices that are the same on every machine for the same seed. Nothing of a phone; leaves
// out evenness to the last digit, which no search needs.
#pragma once
#include <cstdint>
#include <random>
#include <string>
#include <vector>

namespace sim::search {

class Random {
 public:
  explicit Random(std::uint64_t seed) : engine_(seed) {}

  // 0 to count - 1. The standard library's distributions differ between its implementations.
  std::size_t below(std::size_t count) { return static_cast<std::size_t>(engine_() % count); }
  bool chance(unsigned percent) { return below(100) < percent; }
  template <class T>
  const T& of(const std::vector<T>& choices) {
    return choices[below(choices.size())];
  }

 private:
  std::mt19937_64 engine_;
};

}  // namespace sim::search
