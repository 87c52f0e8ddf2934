#include "sim/core/process.hpp"

#include "sim/core/class_definition.hpp"
#include "sim/core/device.hpp"

namespace sim {

Process::Process(Device& device, std::string identifier, Program program)
    : device(device),
      identifier(std::move(identifier)),
      isDaemon(program == Program::Daemon),
      addOns(device.state.addOns),
      categories(device.state.categories),
      selectorsOf(device.state.selectorsOfVersion ? std::optional(device.state.version)
                                                  : std::nullopt),
      neighbour(device.state.neighbour),
      missingClasses(device.state.missingClasses),
      missingMethods(device.state.missingMethods),
      installed_(classDefinitions().size()),
      frameworks_(device.state.frameworks) {
  if (isDaemon && has(Framework::UIKit)) frameworks_[Framework::UIKit] = Presence::Late;
  if (!isSpringBoard() && has(Framework::AppList)) frameworks_[Framework::AppList] = Presence::Late;
  pools_.emplace_back();  // for what happens outside of any callback
}

Process::~Process() {
  heapIsGoing = true;
  kept.clear();
  shared_.clear();
  pools_.clear();
  literals_.clear();
  transients_.clear();
  for (const auto& [address, object] : heap_) delete object;
  heapIsGoing = false;
}

bool Process::isSpringBoard() const { return identifier == kSpringBoard && !isDaemon; }

void Process::loadLibrary() {
  library_ = device.loader.load(*this);
  addAppCategories(*this);
  if (neighbour == Neighbour::Before) hookAsNeighbour(*this);
  library_->runInitialisers();
  if (neighbour == Neighbour::After) hookAsNeighbour(*this);
}

// ---- Classes

void Process::install(const std::string& className) {
  for (const std::size_t index : classDefinitionsOf(className)) {
    if (installed_[index]) return;
    installed_[index] = true;
    classDefinitions()[index].install(*this);
  }
}

Class* Process::findClass(const std::string& name) {
  if (const auto found = classes_.find(name); found != classes_.end()) return found->second;
  install(name);
  const auto found = classes_.find(name);
  return found == classes_.end() ? nullptr : found->second;
}

Class& Process::requireClass(const std::string& name) {
  if (Class* cls = findClass(name)) return *cls;
  const auto hidden = hiddenClasses_.find(name);
  if (hidden == hiddenClasses_.end()) throw Fault("the platform has no class " + name);
  return *hidden->second;
}

Class& Process::createClass(const std::string& name, Class* superclass) {
  auto* meta = new Class(*this, name, superclass ? superclass->isa : nullptr, true);
  auto* cls = new Class(*this, name, superclass, false);
  meta->instances = cls;
  // The root class's metaclass inherits from the root class, so classes answer its methods too.
  if (!superclass) meta->superclass = cls;
  if (superclass) cls->factory = superclass->factory;
  adopt(meta, *meta);
  adopt(cls, *meta);
  return *cls;
}

void Process::registerClass(Class& cls) { classes_[cls.name] = &cls; }

void Process::hideClass(Class& cls) { hiddenClasses_[cls.name] = &cls; }

void Process::removeClass(const std::string& name) {
  findClass(name);  // its objects may still come: only nobody finds it any more
  classes_.erase(name);
}

Address Process::selector(const std::string& name) { return device.selector(name); }

const std::string& Process::selectorName(Address selector) const {
  const std::string* name = device.selectorName(selector);
  if (!name) throw Fault("a selector that was never registered");
  return *name;
}

// ---- Objects

void Process::adopt(Object* object, Class& isa, Address address) {
  object->isa = &isa;
  object->address = address ? address : device.nextObjectAddress();
  heap_[object->address] = object;
}

Ref<Object> Process::allocateInstance(Class& cls) {
  if (!cls.factory) throw Fault("+[" + cls.name + " alloc] is not for this class");
  Object* object = cls.factory(*this);
  const std::size_t size = cls.instanceSize();
  adopt(object, cls, size ? library_->allocate(size * library_->pointerSize()) : 0);
  return Ref<Object>(object);
}

Object& Process::sharedInstance(Class& cls) {
  Ref<Object>& slot = shared_[cls.name];
  if (!slot) slot = allocateInstance(cls);
  return *slot;
}

Object* Process::object(Address address) {
  if (address == 0) return nullptr;
  if (const auto found = heap_.find(address); found != heap_.end()) return found->second;
  if (const auto gone = freed_.find(address); gone != freed_.end())
    throw Fault("use of a freed " + gone->second->name);
  return literal(address);
}

void Process::free(Object& object) {
  ++activity;
  // The object must stay usable while dealloc, which may be hooked, runs.
  if (!object.isa->find("dealloc")) return destroy(object);
  send(&object, "dealloc");
}

void Process::destroy(Object& object) {
  object.dropAssociations();
  heap_.erase(object.address);
  freed_[object.address] = object.isa;
  if (object.isa->instanceSize()) library_->deallocate(object.address);
  delete &object;
}

void Process::deferFault(const std::string& reason) {
  if (deferredFault_.empty()) deferredFault_ = reason;
}

void Process::throwDeferredFault() {
  if (!deferredFault_.empty()) throw Fault(std::exchange(deferredFault_, {}));
}

Ref<Object> Process::autorelease(Ref<Object> object) {
  pools_.back().push_back(object);
  return object;
}

Address Process::pushPool() {
  pools_.emplace_back();
  return pools_.size();
}

void Process::popPool(Address pool) {
  if (pool == 0 || pool > pools_.size()) throw Fault("an autorelease pool that is not there");
  while (pools_.size() >= pool) {
    const auto going = std::move(pools_.back());
    pools_.pop_back();
    (void)going;
  }
  if (pools_.empty()) pools_.emplace_back();
  if (pools_.size() == 1) transients_.clear();
}

}  // namespace sim
