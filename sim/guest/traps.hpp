// The addresses at which the guest reaches the platform. Stand in for the code of the system's
// libraries; leave out that one could read or patch it.
#pragma once
#include <map>
#include <memory>
#include <vector>

#include "sim/core/class.hpp"
#include "sim/guest/cpu.hpp"

namespace sim::guest {

// Where calls into the guest return to.
inline constexpr Address kReturnTrap = kTrapBase;

// What stands behind an address: an imported function by its name, or exposed platform code.
struct Trap {
  std::string name;
  std::shared_ptr<const NativeCode> code{};
  bool isMethod = false;
};

class Traps {
 public:
  // The address of an imported function, the same for each name.
  Address imported(const std::string& name);
  // A new address for platform code.
  Address exposed(std::shared_ptr<const NativeCode> code, bool isMethod);
  std::size_t count() const { return traps_.size(); }
  // Takes back all but the first ones, which must be imports.
  void forgetAllBut(std::size_t count) {
    traps_.erase(traps_.begin() + static_cast<std::ptrdiff_t>(count), traps_.end());
  }
  bool contains(Address address) const {
    return address >= kTrapBase && address < kTrapBase + kTrapSize;
  }
  // Fault if the guest jumped to where nothing is.
  const Trap& at(Address address) const;

 private:
  Address add(Trap trap);

  std::vector<Trap> traps_{{"<return>", {}, false}};
  std::map<std::string, Address> imports_;
};

}  // namespace sim::guest
