#include "sim/core/object.hpp"

#include "sim/core/process.hpp"

namespace sim {

thread_local bool heapIsGoing = false;

Object::~Object() = default;

std::string Object::description() const { return "<" + isa->name + ">"; }

void Object::libraryRetain() {
  ++process.activity;
  if (!immortal()) ++libraryReferences_;
}

void Object::libraryRelease() {
  ++process.activity;
  if (immortal()) return;
  if (libraryReferences_ == 0)
    throw Fault(description() + " released once more than it was retained");
  --libraryReferences_;
  freeIfUnreferenced();
}

void Object::release() {
  --platformReferences_;
  if (process.ended) return;  // its heap goes as a whole
  try {
    freeIfUnreferenced();
  } catch (const Fault& fault) {
    process.deferFault(fault.what());
  }
}

void Object::freeIfUnreferenced() {
  if (libraryReferences_ > 0 || platformReferences_ > 0 || deallocating_ || immortal()) return;
  deallocating_ = true;
  process.free(*this);
}

void Object::associate(Address key, Object* value, std::uint64_t policy) {
  constexpr std::uint64_t kAssign = 0, kRetainNonatomic = 1, kRetain = 0x301;
  constexpr std::uint64_t kCopyNonatomic = 3, kCopy = 0x303;
  if (policy != kAssign && policy != kRetainNonatomic && policy != kRetain &&
      policy != kCopyNonatomic && policy != kCopy)
    throw Fault("unknown association policy " + std::to_string(policy));
  Ref<Object> kept(value);
  const bool copies = policy == kCopyNonatomic || policy == kCopy;
  if (copies && value) {
    const Value copy = process.send(value, "copy");
    kept = Ref<Object>(process.object(copy.bits));
  }
  const auto old = associations_.find(key);
  Associated previous{nullptr, false, false};
  if (old != associations_.end()) {
    previous = old->second;
    associations_.erase(old);
  }
  if (kept) {
    const bool held = policy != kAssign;
    if (held) kept->retain();
    associations_[key] = {kept.get(), held, policy == kRetain || policy == kCopy};
  }
  if (previous.held) previous.value->release();
}

Object* Object::associated(Address key) const {
  const auto found = associations_.find(key);
  return found == associations_.end() ? nullptr : found->second.value;
}

bool Object::associatedAtomically(Address key) const {
  const auto found = associations_.find(key);
  return found != associations_.end() && found->second.atomic;
}

void Object::dropAssociations() {
  const auto going = std::move(associations_);
  associations_.clear();
  for (const auto& [key, associated] : going)
    if (associated.held) associated.value->release();
}

}  // namespace sim
