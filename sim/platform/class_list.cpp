// Every class that the simulated platform knows, superclasses first.
#include "sim/foundation/definitions.hpp"

namespace sim {

const std::vector<ClassDefinition>& classDefinitions() {
  static const std::vector<ClassDefinition> all = {
      // Foundation
      defineNSObject(),
      defineBlock(),
      defineNSString(),
  };
  return all;
}

}  // namespace sim
