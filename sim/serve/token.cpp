#include "sim/serve/token.hpp"

#include <fmt/format.h>
#include <sys/random.h>

#include <stdexcept>
#include <vector>

namespace sim::serve {

std::string randomHex(std::size_t bytes) {
  std::vector<unsigned char> random(bytes);
  if (getrandom(random.data(), bytes, 0) != static_cast<ssize_t>(bytes))
    throw std::runtime_error("no random numbers");
  return fmt::format("{:02x}", fmt::join(random, ""));
}

bool sameInConstantTime(const std::string& one, const std::string& other) {
  if (one.size() != other.size()) return false;
  unsigned difference = 0;
  for (std::size_t i = 0; i < one.size(); ++i)
    difference |= static_cast<unsigned char>(one[i]) ^ static_cast<unsigned char>(other[i]);
  return difference == 0;
}

}  // namespace sim::serve
