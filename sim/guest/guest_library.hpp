// The library's device binary, run by an emulated processor: the second way of running it, against
// the very same simulated platform as the host build.
#pragma once
#include <filesystem>
#include <memory>
#include <set>

#include "sim/core/library.hpp"
#include "sim/guest/slice.hpp"

namespace sim::guest {

struct MachOImage;
class GuestLibrary;

// What a debugging session of a guest wants to see; all off by default. Goes to standard error.
struct GuestDebugging {
  bool calls = false;     // every call between guest and platform
  bool steps = false;     // every instruction
  std::string breakAt{};  // symbol at which registers and a back trace are shown
};

class GuestLibraryLoader final : public LibraryLoader {
 public:
  // Reads a fat or thin device binary. Throws MachOError if it cannot be loaded, and
  // std::runtime_error naming a symbol that it imports and the platform lacks.
  GuestLibraryLoader(const std::filesystem::path& file, Slice slice, GuestDebugging debugging = {});
  ~GuestLibraryLoader() override;

  std::unique_ptr<Library> load(Process& process) override;
  void setVersion(double version) override;

 private:
  friend class GuestLibrary;  // one process's copy
  std::shared_ptr<const MachOImage> image_;
  Slice slice_;
  GuestDebugging debugging_;
  double version_ = 0;
  std::set<GuestLibrary*> living_;
};

}  // namespace sim::guest
