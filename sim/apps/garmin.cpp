// Garmin Connect: the object that the watch's buttons reach. Leaves out the watch and the way from
// it, and what the app itself does with a command.
#include "sim/apps/apps.hpp"
#include "sim/apps/definitions.hpp"
#include "sim/core/device.hpp"

namespace sim {

void startGarmin(Process& process) {
  if (process.findClass("GCMMusicController")) process.shared<Object>("GCMMusicController");
}

ClassDefinition defineGCMMusicController() {
  auto definition =
      ClassDefinition::of<Object>("GCMMusicController", "NSObject", Home::app(kGarmin));
  definition
      .code(detail::methodCode<Object, void, unsigned>("didReceiveCommand:",
                                                       [](Object&, unsigned) {}))
      .effect();
  return definition;
}

}  // namespace sim
