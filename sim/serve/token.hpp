// What nobody can guess: the token that admits to the server, the names of sessions. Nothing of a
// phone; leaves out who was given it.
#pragma once
#include <string>

namespace sim::serve {

// So many bytes of the system's randomness, as hexadecimal digits. Throws std::runtime_error.
std::string randomHex(std::size_t bytes);

// Takes as long whatever the texts have in common.
bool sameInConstantTime(const std::string& one, const std::string& other);

}  // namespace sim::serve
