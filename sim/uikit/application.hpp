// UIApplication, and UIView beside it in application.cpp. In SpringBoard's process the shared one
// is its SpringBoard object. Leaves out events, states and windows; opening an address opens
// nothing.
#pragma once
#include "sim/core/process.hpp"

namespace sim {

class UIApplication : public Object {
 public:
  using Object::Object;
};

// The process's application object; made with the process's first need of it. Borrowed.
Object* sharedApplication(Process& process);

}  // namespace sim
