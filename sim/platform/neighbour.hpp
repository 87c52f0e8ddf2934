// Another extension in the process, which has hooked what our library hooks, before it or after it:
// it passes every call on as it is, once, and the result back.
//
// Stands in for any other tweak on the same methods. Left out: an extension that changes or
// swallows what it gets.
#pragma once
#include <string>
#include <vector>

#include "sim/core/process.hpp"

namespace sim {

// A method that the library can hook, and so the neighbour does.
struct HookedMethod {
  const char* cls;
  const char* selector;
};
const std::vector<HookedMethod>& neighbourMethods();
// And this function, but not in the apps that play.
inline const std::string kNeighbourFunction = "MRMediaRemoteSendCommand";

// Each call of its replacements is an effect, `neighbour CALL`.
void hookAsNeighbour(Process& process);

}  // namespace sim
