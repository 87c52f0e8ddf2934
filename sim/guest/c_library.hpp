// The C library functions that compilers call on their own (memcpy and its like), for the guest.
// Leaves out the rest of the C library, of which the platform has what the library calls itself.
#pragma once
#include <array>
#include <optional>
#include <string>

#include "sim/guest/guest_memory.hpp"

namespace sim::guest {

// Runs `name` on words as the guest passed them; its result, or nothing if there is no such
// function. Fault if it is given memory that is not the process's.
std::optional<Address> callCLibrary(const std::string& name, GuestMemory& memory,
                                    const std::array<Address, 3>& arguments);

// Whether there is such a function.
bool isCLibrary(const std::string& name);

}  // namespace sim::guest
