#include "sim/platform/telling.hpp"

#include "sim/core/device.hpp"
#include "sim/foundation/dictionary.hpp"

namespace sim {

Value optionsArgument(Process& process) {
  if (!process.device.state.tellingArguments) return Value::nil();
  return Value::object(process.autorelease(makeDictionary(process))->address);
}

Value objectArgument(Process& process) {
  if (!process.device.state.tellingArguments) return Value::nil();
  return Value::object(process.autorelease(process.make<Object>("NSObject"))->address);
}

}  // namespace sim
