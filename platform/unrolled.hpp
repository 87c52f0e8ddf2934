// For what runs in every process that starts, where instructions are counted: tables are gone
// through row by row at compile time, and a function that is called again and again is looked up
// once. Stands in for nothing of the platform; where nobody counts, an ordinary loop does.
#pragma once
#include <utility>

namespace platform {

// Where the linker has bound `function`. A call through this is one branch; a call by the
// function's name goes through the import's stub each time.
template <class Function>
[[gnu::always_inline]] inline Function* bound(Function* function) {
  asm("" : "+r"(function));  // or the compiler would go by the name after all
  return function;
}

// Calls visit.template operator()<0>(), …<Count - 1>(), one after the other without a loop.
template <std::size_t Count, class Visit>
[[gnu::always_inline]] inline void unrolled(Visit visit) {
  [&]<std::size_t... Index>(std::index_sequence<Index...>) __attribute__((always_inline)) {
    (visit.template operator()<Index>(), ...);
  }
  (std::make_index_sequence<Count>{});
}

}  // namespace platform
