// The memory of one emulated process. Guest addresses are the same at every run; the host's memory
// behind them is found by region. Stands in for the kernel's mappings and malloc; leaves out
// address randomisation, paging and protections that change.
#pragma once
#include <map>
#include <memory>
#include <set>
#include <vector>

#include "sim/core/value.hpp"

namespace sim::guest {

class GuestMemory {
 public:
  struct Region {
    Address base = 0;
    std::size_t size = 0;
    std::uint8_t* host = nullptr;
    bool writable = false;
    bool executable = false;
  };

  GuestMemory();
  ~GuestMemory();
  GuestMemory(const GuestMemory&) = delete;
  GuestMemory& operator=(const GuestMemory&) = delete;

  // Adds zeroed memory, a multiple of the page size. Borrowed reference, valid for ever.
  const Region& add(Address base, std::size_t size, bool writable, bool executable);
  const std::vector<std::unique_ptr<Region>>& regions() const { return regions_; }
  // Zeroes all writable memory; nothing is allocated any more.
  void clear();

  // As platform code reads and writes: Fault outside of what the process may touch.
  void read(Address from, void* to, std::size_t size) const;
  void write(Address to, const void* from, std::size_t size);
  // As the loader writes: read-only memory too.
  void patch(Address to, const void* from, std::size_t size);

  // Memory that the platform hands out. Freed memory is never handed out again.
  Address allocate(std::size_t size);
  void deallocate(Address memory);
  // Whether these bytes of the heap belong to one living block.
  bool mayTouchHeap(Address address, std::size_t size) const;
  const Region& heap() const { return *heap_; }
  // Living blocks: address and size.
  std::vector<std::pair<Address, std::size_t>> blocks() const;

 private:
  const Region* find(Address address, std::size_t size) const;

  std::vector<std::unique_ptr<Region>> regions_;
  const Region* heap_ = nullptr;
  std::size_t heapUsed_ = 0;
  std::map<Address, std::size_t> blocks_;
};

}  // namespace sim::guest
