#include "sim/guest/c_library.hpp"

#include <cstring>
#include <vector>

namespace sim::guest {

namespace {

using Arguments = std::array<Address, 3>;
using Function = Address (*)(GuestMemory&, const Arguments&);

std::vector<std::uint8_t> bytes(const GuestMemory& memory, Address from, Address size) {
  if (size > (Address{1} << 20)) throw Fault("a C library call over more than a megabyte");
  std::vector<std::uint8_t> copy(size);
  if (size) memory.read(from, copy.data(), size);
  return copy;
}

Address move(GuestMemory& memory, const Arguments& a) {
  const auto copy = bytes(memory, a[1], a[2]);
  if (!copy.empty()) memory.write(a[0], copy.data(), copy.size());
  return a[0];
}

Address copy(GuestMemory& memory, const Arguments& a) {
  if (a[0] < a[1] + a[2] && a[1] < a[0] + a[2] && a[0] != a[1])
    throw Fault("memcpy of overlapping memory");
  return move(memory, a);
}

Address set(GuestMemory& memory, const Arguments& a) {
  auto filled = bytes(memory, a[0], a[2]);
  std::memset(filled.data(), static_cast<int>(a[1] & 0xff), filled.size());
  if (!filled.empty()) memory.write(a[0], filled.data(), filled.size());
  return a[0];
}

Address compare(GuestMemory& memory, const Arguments& a) {
  const auto left = bytes(memory, a[0], a[2]);
  const auto right = bytes(memory, a[1], a[2]);
  const int order = left.empty() ? 0 : std::memcmp(left.data(), right.data(), left.size());
  return static_cast<std::uint32_t>(order);
}

Address length(GuestMemory& memory, const Arguments& a) {
  Address size = 0;
  for (char c = 1; c != 0; ++size) memory.read(a[0] + size, &c, 1);
  return size - 1;
}

struct Row {
  const char* name;
  Function run;
};
constexpr Row kFunctions[] = {
    {"memcpy", copy}, {"memmove", move}, {"memset", set}, {"memcmp", compare}, {"strlen", length},
};

}  // namespace

std::optional<Address> callCLibrary(const std::string& name, GuestMemory& memory,
                                    const std::array<Address, 3>& arguments) {
  for (const Row& row : kFunctions)
    if (name == row.name) return row.run(memory, arguments);
  return std::nullopt;
}

bool isCLibrary(const std::string& name) {
  for (const Row& row : kFunctions)
    if (name == row.name) return true;
  return false;
}

}  // namespace sim::guest
