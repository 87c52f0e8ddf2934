// Which of its methods a class has in a process: by the version, the add-ons and what the device
// lacks.
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

ClassDefinition& ClassDefinition::on(Versions versions) {
  rows_.back().versions = versions;
  return *this;
}

ClassDefinition& ClassDefinition::resolvedBy(std::string className, Versions versions) {
  rows_.back().resolvedBy = std::move(className);
  rows_.back().resolvedOn = versions;
  return *this;
}

ClassDefinition& ClassDefinition::classOn(Versions versions) {
  versions_ = versions;
  return *this;
}

ClassDefinition& ClassDefinition::variables(std::vector<std::string> names) {
  variables_ = std::move(names);
  return *this;
}

ClassDefinition& ClassDefinition::partOf(Framework framework) {
  framework_ = framework;
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
      return process.identifier == home.name && !process.isDaemon;
    case Home::Where::AddOn:
      return process.isSpringBoard() && process.addOns.contains(home.name);
  }
  return false;
}

// Whether the process's classes have what is of these versions.
bool has(const Process& process, Versions versions) {
  return !process.selectorsOf || versions.contain(*process.selectorsOf);
}

}  // namespace

const std::vector<std::size_t>& classDefinitionsOf(const std::string& name) {
  static const auto indices = [] {
    std::unordered_map<std::string, std::vector<std::size_t>> all;
    for (std::size_t i = 0; i < classDefinitions().size(); ++i)
      all[classDefinitions()[i].name()].push_back(i);
    return all;
  }();
  static const std::vector<std::size_t> none;
  const auto found = indices.find(name);
  return found == indices.end() ? none : found->second;
}

bool isKnownClass(const std::string& name) {
  return !name.starts_with('_') && !classDefinitionsOf(name).empty();
}

void ClassDefinition::install(Process& process) const {
  const bool missing = process.missingClasses.contains(name_);
  // The platform itself cannot do without what every process has, nor the Settings app without what
  // its pages are made of: that is only not to be found.
  const bool hidden =
      missing && (home_.where == Home::Where::Everywhere || home_.name == kSettings);
  if (!isHome(home_, process) || (missing && !hidden)) return;
  if (!has(process, versions_)) return;
  Class* superclass = superclass_.empty() ? nullptr : &process.requireClass(superclass_);
  Class& cls = process.createClass(name_, superclass);
  if (factory_) cls.factory = factory_;
  cls.variables = variables_;
  cls.mainThreadOnly = cls.isa->mainThreadOnly = mainThreadOnly_;
  for (const Row& row : rows_) {
    if (!row.addOn.empty() && !process.addOns.contains(row.addOn)) continue;
    if (!has(process, row.versions)) continue;
    Class& target = row.onClass ? *cls.isa : cls;
    Method& method = target.methods[row.code->name];
    method = {row.code->name, row.code->signature, {row.code, 0}, {}};
    if (process.selectorsOf && row.resolvedOn.contain(*process.selectorsOf))
      method.resolvedBy = row.resolvedBy;
  }
  for (const auto& [className, selector] : process.missingMethods)
    if (className == name_) cls.deny(selector);
  if (hidden)
    process.hideClass(cls);
  else
    process.registerClassOf(framework_, cls);
}

}  // namespace sim
