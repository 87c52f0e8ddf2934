#include "sim/guest/guest_memory.hpp"

#include <sys/mman.h>

#include <cstring>

namespace sim::guest {

namespace {

constexpr Address kHeapBase = 0x22000000;
constexpr std::size_t kHeapSize = std::size_t{8} << 20;
constexpr std::size_t kRedZone = 32;  // between blocks, so that a step too far meets none

}  // namespace

GuestMemory::GuestMemory() { heap_ = &add(kHeapBase, kHeapSize, true, false); }

GuestMemory::~GuestMemory() {
  for (const auto& region : regions_) munmap(region->host, region->size);
}

const GuestMemory::Region& GuestMemory::add(Address base, std::size_t size, bool writable,
                                            bool executable) {
  void* host = mmap(nullptr, size, PROT_READ | PROT_WRITE,
                    MAP_PRIVATE | MAP_ANONYMOUS | MAP_NORESERVE, -1, 0);
  if (host == MAP_FAILED) throw std::runtime_error("no memory for the emulated process");
  regions_.push_back(std::make_unique<Region>(
      Region{base, size, static_cast<std::uint8_t*>(host), writable, executable}));
  return *regions_.back();
}

// (The pages go back to the kernel: nearly none of them were touched.)
void GuestMemory::clear() {
  for (const auto& region : regions_)
    if (region->writable) madvise(region->host, region->size, MADV_DONTNEED);
  heapUsed_ = 0;
  blocks_.clear();
}

const GuestMemory::Region* GuestMemory::find(Address address, std::size_t size) const {
  for (const auto& region : regions_)
    if (address >= region->base && size <= region->size &&
        address - region->base <= region->size - size)
      return region.get();
  return nullptr;
}

void GuestMemory::read(Address from, void* to, std::size_t size) const {
  const Region* region = find(from, size);
  if (!region || (region == heap_ && !mayTouchHeap(from, size)))
    throw Fault("access to memory that is not the process's");
  std::memcpy(to, region->host + (from - region->base), size);
}

void GuestMemory::write(Address to, const void* from, std::size_t size) {
  const Region* region = find(to, size);
  if (!region || !region->writable || (region == heap_ && !mayTouchHeap(to, size)))
    throw Fault("access to memory that is not the process's");
  std::memcpy(region->host + (to - region->base), from, size);
}

void GuestMemory::patch(Address to, const void* from, std::size_t size) {
  const Region* region = find(to, size);
  if (!region) throw std::logic_error("patch outside of the image");
  std::memcpy(region->host + (to - region->base), from, size);
}

Address GuestMemory::allocate(std::size_t size) {
  const std::size_t rounded = (size + 15) / 16 * 16;
  if (heapUsed_ + rounded + kRedZone > kHeapSize) throw Fault("the process is out of memory");
  heapUsed_ += kRedZone;
  const Address memory = kHeapBase + heapUsed_;
  heapUsed_ += rounded;
  blocks_[memory] = size;
  return memory;
}

void GuestMemory::deallocate(Address memory) {
  if (blocks_.erase(memory) == 0) throw std::logic_error("deallocate of what was never allocated");
}

bool GuestMemory::mayTouchHeap(Address address, std::size_t size) const {
  const auto after = blocks_.upper_bound(address);
  if (after == blocks_.begin()) return false;
  const auto& [start, length] = *std::prev(after);
  return address - start <= length && size <= length - (address - start);
}

std::vector<std::pair<Address, std::size_t>> GuestMemory::blocks() const {
  return {blocks_.begin(), blocks_.end()};
}

}  // namespace sim::guest
