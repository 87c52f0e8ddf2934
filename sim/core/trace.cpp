#include "sim/core/trace.hpp"

#include <fmt/format.h>
#include <fmt/printf.h>

namespace sim {

std::string quoted(const std::string& text) {
  std::string out = "\"";
  for (const char c : text) {
    if (c == '"' || c == '\\') out += '\\';
    if (c == '\n')
      out += "\\n";
    else
      out += c;
  }
  return out + '"';
}

std::string shownNumber(double value) { return fmt::sprintf("%g", value); }

}  // namespace sim
