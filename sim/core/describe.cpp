#include "sim/core/describe.hpp"

#include <fmt/format.h>

#include "sim/core/process.hpp"
#include "sim/core/trace.hpp"

namespace sim {

std::string described(Process& process, const Value& value) {
  switch (value.kind) {
    case Kind::Void:
      return "";
    case Kind::Bool:
      return value.asBool() ? "YES" : "NO";
    case Kind::Float:
    case Kind::Double:
      return shownNumber(value.asReal());
    case Kind::UInt8:
    case Kind::UInt32:
    case Kind::ULong:
    case Kind::UInt64:
      return fmt::format("{}", value.bits);
    case Kind::Int8:
    case Kind::Int32:
    case Kind::Long:
    case Kind::Int64:
      return fmt::format("{}", value.asInteger());
    case Kind::Selector:
      return value.bits ? process.selectorName(value.bits) : "nil";
    case Kind::Pointer:
      return value.bits ? "<pointer>" : "nil";
    case Kind::CString:
      return quoted(process.library().readText(value.bits));
    case Kind::Object:
    case Kind::Class: {
      const Object* object = process.object(value.bits);
      return object ? object->description() : "nil";
    }
  }
  return "";
}

namespace {

std::string method(const Invocation& invocation) {
  const auto* cls = dynamic_cast<const Class*>(invocation.self);
  std::string receiver = invocation.self->isa->name;
  if (const std::string owner = invocation.self->owner(); !owner.empty())
    receiver += "(" + owner + ")";
  std::string text = fmt::format("{}[{} ", cls ? '+' : '-', receiver);
  std::size_t argument = 0;
  bool first = true;
  std::size_t start = 0;
  const std::string& name = invocation.name;
  for (std::size_t colon = name.find(':'); colon != std::string::npos;
       start = colon + 1, colon = name.find(':', start)) {
    if (!first) text += ' ';
    first = false;
    text += name.substr(start, colon - start + 1);
    text += described(invocation.process, invocation.arguments.at(argument++));
  }
  if (argument == 0) text += name;
  return text + "]";
}

}  // namespace

std::string described(const Invocation& invocation) {
  if (invocation.self) return method(invocation);
  std::string text = invocation.name + "(";
  for (std::size_t i = 0; i < invocation.arguments.size(); ++i)
    text += (i ? ", " : "") + described(invocation.process, invocation.arguments[i]);
  return text + ")";
}

}  // namespace sim
