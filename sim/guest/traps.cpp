#include "sim/guest/traps.hpp"

namespace sim::guest {

namespace {
constexpr Address kStep = 4;  // one return instruction each
}

Address Traps::add(Trap trap) {
  if (traps_.size() * kStep >= kTrapSize) throw Fault("out of entries for platform code");
  traps_.push_back(std::move(trap));
  return kTrapBase + (traps_.size() - 1) * kStep;
}

Address Traps::imported(const std::string& name) {
  Address& address = imports_[name];
  if (!address) address = add({name, {}, false});
  return address;
}

Address Traps::exposed(std::shared_ptr<const NativeCode> code, bool isMethod) {
  const std::string name = code->name;
  return add({name, std::move(code), isMethod});
}

const Trap& Traps::at(Address address) const {
  const Address index = (address - kTrapBase) / kStep;
  if (address < kTrapBase || index >= traps_.size())
    throw Fault("a jump to where no platform code is");
  return traps_[index];
}

}  // namespace sim::guest
