// What the Objective-C runtime does with an image while it is mapped, before any of its code runs:
// class references are bound, selector references registered, categories and classes attached. The
// library has no such metadata; the tweak that it is measured against has. Left out: protocols,
// properties, instance variables, +load, and references to a class of the image's own, which the
// simulated runtime makes anew.
#pragma once
#include "sim/core/process.hpp"
#include "sim/guest/guest_memory.hpp"
#include "sim/guest/loaded_image.hpp"

namespace sim::guest {

// Throws std::runtime_error naming a class that the process does not have.
void attachMetadata(LoadedImage& image, GuestMemory& memory, Process& process, unsigned wordSize);

}  // namespace sim::guest
