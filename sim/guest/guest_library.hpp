// The library's device binary, run by an emulated processor: the second way of running it, against
// the very same simulated platform as the host build. Stands in for dyld and the processor
// together; leaves out the code signature, which nothing here checks.
#pragma once
#include <filesystem>
#include <memory>
#include <set>
#include <vector>

#include "sim/core/library.hpp"
#include "sim/guest/slice.hpp"

namespace sim::guest {

struct MachOImage;
class GuestLibrary;
class Machine;

// What a debugging session of a guest wants to see; all off by default. Goes to standard error.
struct GuestDebugging {
  bool calls = false;     // every call between guest and platform
  bool steps = false;     // every instruction
  std::string breakAt{};  // symbol at which registers and a back trace are shown
};

// What the guests' code has cost since it was last asked for. Counts are exact and repeat.
struct Cost {
  std::uint64_t own = 0;    // instructions in the library's own code
  std::uint64_t stubs = 0;  // and in its import stubs
  std::uint64_t calls = 0;  // calls into the platform
  std::size_t pages = 0;    // pages of data written, in the process that ran last

  Cost operator-(const Cost& before) const {
    return {own - before.own, stubs - before.stubs, calls - before.calls, pages};
  }
};

// From the last observer to the last hook of a load.
struct HookRows {
  std::uint64_t own = 0;    // instructions in the library's own code
  std::uint64_t count = 0;  // hooks, of methods and functions
};

// What a phone's loader writes into an image: pages before any of its code runs, pointers by kind.
struct FixUps {
  std::size_t pages = 0;
  std::size_t rebases = 0;
  std::size_t binds = 0;
  std::size_t lazyBinds = 0;  // at the first call of each
};

// Which slices a device binary holds, arm64 first; a thin one holds one. Throws MachOError if it
// holds none.
std::vector<Slice> slicesOf(const std::filesystem::path& file);

class GuestLibraryLoader final : public LibraryLoader {
 public:
  // Reads a fat or thin device binary. Throws MachOError if it cannot be loaded, and
  // std::runtime_error naming a symbol that it imports and the platform lacks.
  GuestLibraryLoader(const std::filesystem::path& file, Slice slice, GuestDebugging debugging = {});
  ~GuestLibraryLoader() override;

  std::unique_ptr<Library> load(Process& process) override;
  void setVersion(double version) override;

  // Left behind by processes that have ended, and restored for others.
  const std::vector<std::unique_ptr<Machine>>& idle() const { return idle_; }
  // Whether a process may get the restored machine of one that has ended; only tests say no.
  void reuse(bool machines) { reusing_ = machines; }

  // Counts instructions in every process loaded from now on.
  void measure() { measuring_ = true; }
  Cost cost() const { return cost_; }
  // The last load: the whole constructor, from its first instruction to its return.
  Cost loadCost() const { return loadCost_; }
  HookRows hookRows() const { return hookRows_; }
  FixUps fixUps(Address pageSize) const;

 private:
  friend class GuestLibrary;           // one process's copy
  const MachOImage& bundleImage();     // read when it is first asked for
  std::unique_ptr<Machine> machine();  // an idle one or a new one
  bool watches() const;                // hooks of its own are in every processor

  std::shared_ptr<const MachOImage> image_;
  std::shared_ptr<const MachOImage> bundleImage_;
  Slice slice_;
  GuestDebugging debugging_;
  double version_ = 0;
  bool measuring_ = false;
  bool reusing_ = true;
  Cost cost_;
  Cost loadCost_;
  HookRows hookRows_;
  std::set<GuestLibrary*> living_;
  std::vector<std::unique_ptr<Machine>> idle_;
};

}  // namespace sim::guest
