// Finds references of the library's own that it has lost, or never needed. Stands in for the tool
// by which a phone's heap is searched; leaves out circles of objects that hold each other, and the
// platform's own references.
#include <algorithm>
#include <map>

#include "sim/core/device.hpp"

namespace sim {

const std::vector<std::string>& Process::leaks() {
  if (leaksOf_ != activity) leaks_ = foundLeaks();
  leaksOf_ = activity;
  return leaks_;
}

// The library owns an object as often as it counts references of its own to it; each must stand
// somewhere: in the library's variables, or in a living block's captures.
std::vector<std::string> Process::foundLeaks() {
  std::map<Address, long> owned;
  for (const auto& [address, object] : heap_)
    if (object->libraryReferences() > 0) owned[address] = object->libraryReferences();
  if (owned.empty()) return sharedLeaks();
  const Address first = owned.begin()->first;
  const Address last = owned.rbegin()->first;
  const unsigned word = library_ ? library_->pointerSize() : 8;
  const auto ranges = library_ ? library_->data() : decltype(library_->data()){};
  for (const auto& [start, size] : ranges)
    for (Address at = (start + word - 1) / word * word; at + word <= start + size; at += word) {
      const Address value = library_->dataWord(at);
      if (value < first || value > last) continue;
      const auto found = owned.find(value);
      if (found != owned.end()) --found->second;
    }
  std::vector<std::string> lost;
  for (const auto& [address, missing] : owned)
    if (missing > 0)
      lost.push_back(heap_.at(address)->description() + " (" + std::to_string(missing) +
                     (missing == 1 ? " reference)" : " references)"));
  for (auto& held : sharedLeaks()) lost.push_back(std::move(held));
  return lost;
}

// What the platform keeps for the life of the process nobody need hold on to.
std::vector<std::string> Process::sharedLeaks() const {
  std::vector<std::string> held;
  for (const auto& [name, object] : shared_)
    if (object && object->libraryReferences() > 0)
      held.push_back(object->description() + " (held, though the platform keeps it)");
  return held;
}

}  // namespace sim
