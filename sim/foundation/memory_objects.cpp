// Objects that live in the library's own memory: constant strings and block literals; and the
// platform's variables that hold a text. Stands in for what the runtime reads straight from there;
// leaves out constant strings beyond 8-bit characters.
#include "sim/core/device.hpp"
#include "sim/foundation/block.hpp"
#include "sim/foundation/string.hpp"

namespace sim {

// What stands at an address outside the heap, known by its class word.
Object* Process::literal(Address address) {
  if (const auto known = literals_.find(address); known != literals_.end())
    return known->second.get();
  if (!library_) throw Fault("an object address that was never handed out");
  const Address isa = library_->readPointer(address);
  if (isa == library_->variable("__CFConstantStringClassReference")) {
    const unsigned word = library_->pointerSize();
    constexpr Address kAscii = 0x7c8;  // constant, not to be freed, one byte a character
    if (library_->readPointer(address + word) != kAscii)
      throw Fault("a constant string that does not say so");
    std::string text(library_->readPointer(address + 3 * word), '\0');
    library_->read(library_->readPointer(address + 2 * word), text.data(), text.size());
    auto* string = new NSString(*this, std::move(text), /*constant=*/true);
    adopt(string, requireClass("NSString"), address);
    literals_[address] = Ref<Object>(string);
    return string;
  }
  if (isa == library_->variable("_NSConcreteGlobalBlock")) {  // stays where it is, for ever
    auto* block = new Block(*this, Block::Where::Global);
    adopt(block, requireClass("NSBlock"), address);
    return block;
  }
  if (isa == library_->variable("_NSConcreteStackBlock")) {  // goes with its function
    auto block = std::make_unique<Block>(*this, Block::Where::Stack);
    block->isa = &requireClass("NSBlock");
    block->address = address;
    transients_.push_back(std::move(block));
    return transients_.back().get();
  }
  throw Fault("an address that is no object");
}

// Exported variables that hold a string: dlsym gives the variable's address.
Address Process::platformVariable(const std::string& name, std::optional<Framework> only) {
  struct Exported {
    Framework framework;
    std::string text;
  };
  static const std::map<std::string, Exported> strings = {
      {"ACAccountTypeIdentifierTwitter", {Framework::Accounts, "com.apple.twitter"}},
      {"SLServiceTypeTwitter", {Framework::Social, "SLServiceTypeTwitter"}},
  };
  const auto found = strings.find(name);
  if (found == strings.end() || !isExported(found->second.framework, only)) return 0;
  Address& variable = variables_[name];
  if (!variable) {
    auto* string = new NSString(*this, found->second.text, /*constant=*/true);
    adopt(string, requireClass("NSString"));
    variable = library_->allocate(library_->pointerSize());
    library_->writePointer(variable, string->address);
  }
  return variable;
}

}  // namespace sim
