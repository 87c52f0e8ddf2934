// The main thread, on which everything of UIKit and SpringBoard must happen. Stands in for
// libdispatch's header; leaves out every other queue, and waiting.
#pragma once
#include "platform/block.hpp"

namespace platform {

// Stands on pthread_main_np.
inline bool isMainThread() { return pthread_main_np() != 0; }

// Runs `work` on the main thread, later; what it captures lives as long. Any thread. Stands on
// dispatch_async.
template <class Work>
void onMainQueue(Work work) {
  auto later = block<void()>(std::move(work));
  dispatch_async(&_dispatch_main_q, later.object().raw);
}

}  // namespace platform
