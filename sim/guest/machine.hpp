// The processor and the memory of one emulated process with the library's image in it, as dyld
// hands it to the image's constructor. Making one and translating its code is most of what starting
// a process costs, so what a process leaves behind is restored and used again. Stands in for a new
// address space; leaves out everything that GuestMemory, Cpu and LoadedImage leave out.
#pragma once
#include "sim/guest/cpu.hpp"
#include "sim/guest/loaded_image.hpp"
#include "sim/guest/traps.hpp"

namespace sim::guest {

class Machine {
 public:
  // Throws std::runtime_error if the image imports what the platform lacks.
  Machine(const MachOImage& image, Slice slice);

  // Makes it what it was when it was made: memory, registers, and entries of platform code. Only
  // between two runs; not after anything has been mapped, or a hook of its own put into the
  // processor. What is kept is the translation of code that nothing can write to.
  void restore();

  GuestMemory memory;
  Traps traps;
  Cpu cpu;
  LoadedImage image;

 private:
  struct Copy {
    const GuestMemory::Region* region;
    std::vector<std::uint8_t> contents;
  };
  std::vector<Copy> written_;  // of the image, by the loader
  std::size_t entries_;        // of platform code that the image imports
};

}  // namespace sim::guest
