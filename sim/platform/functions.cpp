#include "sim/platform/functions.hpp"

#include "sim/core/class_definition.hpp"

namespace sim {

NativeCode effect(NativeCode code) {
  code.effect = true;
  return code;
}

NativeCode effect(NativeCode code, Describe describe) {
  code.describe = std::move(describe);
  return effect(std::move(code));
}

const std::vector<std::shared_ptr<const NativeCode>>& platformFunctions() {
  static const auto all = [] {
    std::vector<std::shared_ptr<const NativeCode>> list;
    for (const Functions& functions :
         {runtimeFunctions(), systemFunctions(), coreFoundationFunctions(), substrateFunctions(),
          preferenceFunctions(), frameworkFunctions()})
      for (const NativeCode& code : functions) list.push_back(std::make_shared<NativeCode>(code));
    return list;
  }();
  return all;
}

}  // namespace sim
