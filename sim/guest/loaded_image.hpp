// An image in one emulated process, the library's or the settings bundle's: its segments mapped,
// its fix-ups applied, its imports bound to traps and to the platform's variables. Stands in for
// dyld's loading; leaves out binding at the first call, as everything is bound at once, and images
// that it would load along.
#pragma once
#include <functional>
#include <string>

#include "sim/guest/guest_memory.hpp"
#include "sim/guest/slice.hpp"
#include "sim/guest/traps.hpp"

namespace sim::guest {

struct MachOImage;

// Where images land in every process.
inline constexpr Address kLibraryBase = 0x04000000;
inline constexpr Address kBundleBase = 0x08000000;

// The memory of the platform's variables, which the images of a process share. Once a process,
// before any image.
const GuestMemory::Region& mapPlatformVariables(GuestMemory& memory);

class LoadedImage {
 public:
  // Throws std::runtime_error if the image imports what the platform lacks.
  LoadedImage(const MachOImage& image, std::string name, Address base, Slice slice,
              GuestMemory& memory, Traps& traps);

  // Binds imported Objective-C classes ("NSBundle") and metaclasses, once the process has classes.
  using ClassAddress = std::function<Address(const std::string& name, bool meta)>;
  void bindClasses(const ClassAddress& addressOf);
  // What the constructor functions are, in order.
  std::vector<Address> initialisers() const;
  // The address of one of the platform's variables.
  Address variable(const std::string& name) const;
  void setVersion(double version);

  // The image's writable ranges.
  std::vector<std::pair<Address, std::size_t>> variables() const;
  // The image's memory.
  const std::vector<const GuestMemory::Region*>& regions() const { return regions_; }

  // The start and end of a section, {0, 0} if the image has none of that name.
  std::pair<Address, Address> section(const std::string& name) const;
  // Where the import stubs and their helpers stand.
  std::pair<Address, Address> stubs() const;
  Address textStart() const { return section("__text").first; }
  Address textEnd() const { return section("__text").second; }

  bool contains(Address address) const;
  // "symbol+0x10 (proCorvalen+0x4a30)", or the bare address outside of the image.
  std::string place(Address address) const;
  // The address of a symbol by its name or the readable form of it; 0 if there is none.
  Address find(const std::string& symbol) const;

 private:
  void mapSegments();
  void applyFixups(Traps& traps);
  Address addressOf(const std::string& import, Traps& traps) const;
  void store(Address at, Address value);

  const MachOImage& image_;
  std::string name_;
  Address base_;
  Slice slice_;
  GuestMemory& memory_;
  std::vector<const GuestMemory::Region*> regions_;
};

// "corvalen::springboard::launchPlayer(bool)" for a C++ symbol as the linker spells it.
std::string readableSymbol(const std::string& symbol);

}  // namespace sim::guest
