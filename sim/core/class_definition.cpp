#include "sim/core/class_definition.hpp"

#include "sim/core/device.hpp"

namespace sim {

ClassDefinition& ClassDefinition::add(NativeCode code, bool onClass) {
  auto shared = std::make_shared<NativeCode>(std::move(code));
  last_ = shared.get();
  rows_.push_back({std::move(shared), onClass, {}});
  return *this;
}

ClassDefinition& ClassDefinition::onlyWithAddOn(std::string addOn) {
  rows_.back().addOn = std::move(addOn);
  return *this;
}

namespace {

bool isHome(const Home& home, const Process& process) {
  switch (home.where) {
    case Home::Where::Everywhere:
      return true;
    case Home::Where::SpringBoard:
      return process.isSpringBoard();
    case Home::Where::App:
      return process.identifier == home.name;
    case Home::Where::AddOn:
      return process.isSpringBoard() && process.addOns.contains(home.name);
  }
  return false;
}

}  // namespace

void ClassDefinition::install(Process& process) const {
  const DeviceState& state = process.device.state;
  const bool missing = state.missingClasses.contains(name_);
  // The platform itself cannot do without what every process has: that is only not to be found.
  const bool hidden = missing && home_.where == Home::Where::Everywhere;
  if (!isHome(home_, process) || (missing && !hidden)) return;
  Class* superclass = superclass_.empty() ? nullptr : &process.requireClass(superclass_);
  Class& cls = process.createClass(name_, superclass);
  if (factory_) cls.factory = factory_;
  cls.mainThreadOnly = cls.isa->mainThreadOnly = mainThreadOnly_;
  for (const Row& row : rows_) {
    if (!row.addOn.empty() && !process.addOns.contains(row.addOn)) continue;
    Class& target = row.onClass ? *cls.isa : cls;
    target.methods[row.code->name] = {row.code->name, row.code->signature, {row.code, 0}};
  }
  if (hidden)
    process.hideClass(cls);
  else
    process.registerClass(cls);
}

}  // namespace sim
