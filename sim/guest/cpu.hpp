// The processor of one emulated process: Unicorn, set up for a slice, over the process's memory.
// Stands in for one core of the phone's; leaves out other cores, caches, timing and system calls.
#pragma once
#include <unicorn/unicorn.h>

#include <exception>
#include <functional>

#include "sim/guest/guest_memory.hpp"
#include "sim/guest/slice.hpp"

namespace sim::guest {

// Own instructions by where they stand, for measurements.
struct InstructionCounts {
  std::uint64_t own = 0;    // in the image's code
  std::uint64_t stubs = 0;  // in its import stubs
};

class Cpu {
 public:
  Cpu(Slice slice, GuestMemory& memory);
  ~Cpu();
  Cpu(const Cpu&) = delete;
  Cpu& operator=(const Cpu&) = delete;

  // `trap(address)` runs when the guest reaches an address of the trap region.
  void onTrap(std::function<void(Address)> trap) { trap_ = std::move(trap); }

  // Makes memory that was added after construction visible to the guest.
  void map(const GuestMemory::Region& region);

  Address integer(unsigned index) const;  // x0… or r0…
  void setInteger(unsigned index, Address value);
  std::uint64_t real(unsigned index) const;  // d0…, as bits
  void setReal(unsigned index, std::uint64_t bits);
  Address stackPointer() const;
  void setStackPointer(Address value);
  Address linkRegister() const;
  Address framePointer() const;
  Address programCounter() const;

  // All registers as they are now, and back to that.
  void keepRegisters();
  void restoreRegisters();

  // Runs from `code` until it returns to `until`. May be used again from within a trap. What a trap
  // throws ends the run and is thrown here. Fault on a bad access or instruction.
  void run(Address code, Address until);

  // Counts instructions executed in these ranges from now on.
  void count(Address textStart, Address textEnd, Address stubsStart, Address stubsEnd);
  // Notes the pages written in this range from now on.
  void watchWrites(Address start, Address end, Address pageSize);
  const InstructionCounts& counts() const { return counts_; }
  const std::set<Address>& writtenPages() const { return writtenPages_; }
  // Calls `step` before each instruction of a range.
  void onInstruction(Address start, Address end, std::function<void(Address)> step);

 private:
  static void trapHook(uc_engine*, std::uint64_t address, std::uint32_t, void* self);
  static bool badAccessHook(uc_engine*, uc_mem_type, std::uint64_t address, int size, std::int64_t,
                            void* self);
  static void heapHook(uc_engine*, uc_mem_type, std::uint64_t address, int size, std::int64_t,
                       void* self);
  static void blockHook(uc_engine*, std::uint64_t, std::uint32_t, void* self);
  Address get(int arm64, int armv7) const;
  void set(int arm64, int armv7, Address value);
  void hook(int type, void* function, Address start, Address end);
  void stop(std::exception_ptr reason);

  Slice slice_;
  GuestMemory& memory_;
  std::function<void(Address)> trap_;
  uc_engine* engine_ = nullptr;
  uc_context* kept_ = nullptr;
  std::exception_ptr stopped_;
  std::uint64_t blocksRun_ = 0;  // since the outermost run began
  int depth_ = 0;
  InstructionCounts counts_;
  std::set<Address> writtenPages_;
  Address writePage_ = 0;
  std::vector<std::unique_ptr<std::function<void(Address)>>> steps_;
};

// Where the traps live: code the guest jumps to in order to reach the platform.
inline constexpr Address kTrapBase = 0x20000000;
inline constexpr std::size_t kTrapSize = std::size_t{1} << 16;

}  // namespace sim::guest
