// What SpringBoard does when it boots, and each app when its process comes up.
#include "sim/core/device.hpp"

namespace sim {

void startUpSpringBoard(Process&) {}
void tellProcessLaunched(Process&, const std::string&) {}
void startUpApp(Process&) {}

}  // namespace sim
