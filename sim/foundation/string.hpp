// NSString: immutable UTF-8 text. Leaves out mutable strings, other encodings, and everything that
// a format can hold but %@ and %%.
#pragma once
#include "sim/core/process.hpp"

namespace sim {

class NSString final : public Object {
 public:
  NSString(Process& process, std::string text, bool constant = false)
      : Object(process), text(std::move(text)), constant_(constant) {}

  std::string description() const override;
  bool equals(const Object& other) const override;
  bool immortal() const override { return constant_; }

  const std::string text;

 private:
  bool constant_;
};

// The text of a string, or nothing for nil.
std::string textOf(const NSString* string);
// A new string.
Ref<NSString> makeString(Process& process, const std::string& text);

}  // namespace sim
