#include "sim/core/hooked_call.hpp"

#include <fmt/format.h>

#include "sim/core/describe.hpp"
#include "sim/core/process.hpp"

namespace sim {

namespace {

constexpr std::string_view kMayShowAnotherName = "updateNowPlayingAppDisplayName:";

std::string nameOf(const Invocation& call) {
  if (!call.self) return call.name;
  const bool onClass = dynamic_cast<const Class*>(call.self) != nullptr;
  return fmt::format("{}[{} {}]", onClass ? '+' : '-', call.self->isa->name, call.name);
}

// "suspended:", or "argument 2" of a function.
std::string argumentName(const std::string& name, std::size_t index) {
  std::size_t start = 0;
  for (std::size_t i = 0;; ++i) {
    const std::size_t colon = name.find(':', start);
    if (colon == std::string::npos) return fmt::format("argument {}", index + 1);
    if (i == index) return name.substr(start, colon - start + 1);
    start = colon + 1;
  }
}

// A wrong value may be anything.
std::string shown(Process& process, const Value& value) {
  try {
    return described(process, value);
  } catch (const Fault&) {
    return "no object";
  }
}

Address addressOf(const Object* object) { return object ? object->address : 0; }

// As much of a value as a method of that type takes.
std::uint64_t taken(Kind kind, std::uint64_t bits) {
  if (kind == Kind::UInt32) return static_cast<std::uint32_t>(bits);
  if (kind == Kind::Int32) return static_cast<std::uint64_t>(static_cast<std::int32_t>(bits));
  return bits;
}

}  // namespace

HookedCall::HookedCall(const NativeCode& platform, const Invocation& call)
    : process_(call.process),
      platform_(platform),
      name_(nameOf(call)),
      receiver_(addressOf(call.self)),
      passed_(call.arguments) {
  process_.hookedCalls.push_back(this);
}

HookedCall::~HookedCall() { process_.hookedCalls.pop_back(); }

void HookedCall::reach(const Invocation& call) {
  if (reached_) throw Fault(name_ + " reached the platform's own implementation twice");
  reached_ = true;
  if (addressOf(call.self) != receiver_)
    throw Fault(name_ + " reached the platform's own implementation with another receiver");
  if (call.name == kMayShowAnotherName) return;
  for (std::size_t i = 0; i < passed_.size(); ++i)
    if (call.arguments.at(i).bits != taken(platform_.signature.arguments.at(i), passed_[i].bits))
      throw Fault(
          fmt::format("{} was called with {} {}, but reached the platform's own "
                      "implementation with {}",
                      name_, argumentName(call.name, i), shown(process_, passed_[i]),
                      shown(process_, call.arguments[i])));
}

void HookedCall::check(const Value& result) const {
  if (platform_.signature.result == Kind::Void) return;
  if (answer_ && result.bits != answer_->bits)
    throw Fault(
        fmt::format("{} answered {}, not the {} that the platform's own implementation answered",
                    name_, shown(process_, result), shown(process_, *answer_)));
  if (!reached_ && result.bits != 0)
    throw Fault(
        fmt::format("{} answered {}, though it never reached the platform's own implementation",
                    name_, shown(process_, result)));
}

}  // namespace sim
