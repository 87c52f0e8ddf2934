#include "sim/core/value.hpp"

namespace sim {

namespace {

Kind kindOf(char code) {
  switch (code) {
    case 'v':
      return Kind::Void;
    case 'B':
      return Kind::Bool;
    case 'c':
      return Kind::Bool;  // 32-bit devices spell BOOL as a signed char
    case 'C':
      return Kind::UInt8;
    case 'i':
      return Kind::Int32;
    case 'I':
      return Kind::UInt32;
    case 'l':
      return Kind::Int32;
    case 'L':
      return Kind::UInt32;
    case 'q':
      return Kind::Int64;
    case 'Q':
      return Kind::UInt64;
    case 'f':
      return Kind::Float;
    case 'd':
      return Kind::Double;
    case '@':
      return Kind::Object;
    case '#':
      return Kind::Class;
    case ':':
      return Kind::Selector;
    case '^':
      return Kind::Pointer;
    case '*':
      return Kind::CString;
    default:
      throw std::invalid_argument(std::string("unknown type code '") + code + "'");
  }
}

}  // namespace

Signature Signature::fromEncoding(const std::string& encoding) {
  std::vector<Kind> kinds;
  for (std::size_t i = 0; i < encoding.size(); ++i) {
    const char code = encoding[i];
    if (code >= '0' && code <= '9') continue;  // frame offsets
    kinds.push_back(kindOf(code));
    if (code == '@' && i + 1 < encoding.size() && encoding[i + 1] == '?') ++i;  // a block
    if (code == '^' && i + 1 < encoding.size()) ++i;                            // what it points at
  }
  if (kinds.size() < 3 || kinds[1] != Kind::Object || kinds[2] != Kind::Selector)
    throw std::invalid_argument("method encoding \"" + encoding + "\" lacks receiver or selector");
  return {kinds[0], std::vector<Kind>(kinds.begin() + 3, kinds.end()), false};
}

}  // namespace sim
