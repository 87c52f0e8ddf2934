// Methods whose declared result nobody knows for certain: callers may look at the word that they
// leave, so a hook has to hand it on. The platform's own leave one that tells. Stands in for
// whatever a phone's register holds then; leaves out results in floating-point registers.
#pragma once
#include "sim/core/bind.hpp"

namespace sim {

inline unsigned long tellingWord(Process& process) {
  constexpr unsigned long kWord = 0x7e11ab1e'5ea1ed00;
  return process.library().pointerSize() == 8 ? kWord : kWord & 0xffffffff;
}

// A method that does `work` and leaves the word.
template <class T, class... A, class F>
NativeCode leavingWord(std::string selector, F work) {
  return detail::methodCode<T, unsigned long, A...>(std::move(selector),
                                                    [work](T& self, A... arguments) {
                                                      work(self, arguments...);
                                                      return tellingWord(self.process);
                                                    });
}
// One that has no other effect.
template <class... A>
NativeCode leavingWord(std::string selector) {
  return leavingWord<Object, A...>(std::move(selector), [](Object&, A...) {});
}

}  // namespace sim
