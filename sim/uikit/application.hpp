// UIApplication. In SpringBoard's process the shared one is its SpringBoard object.
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
