#include "sim/guest/cpu.hpp"

#include <fmt/format.h>

#include <cstring>
#include <utility>

namespace sim::guest {

namespace {

// More code than any callback of the library runs, and soon reached by an endless loop.
constexpr std::uint64_t kMostBlocks = 50'000'000;

void check(uc_err error, const char* what) {
  if (error != UC_ERR_OK)
    throw std::runtime_error(fmt::format("emulator: {}: {}", what, uc_strerror(error)));
}

}  // namespace

Cpu::Cpu(Slice slice, GuestMemory& memory) : slice_(slice), memory_(memory) {
  const bool wide = slice == Slice::arm64;
  check(uc_open(wide ? UC_ARCH_ARM64 : UC_ARCH_ARM, UC_MODE_ARM, &engine_), "open");
  if (wide) {  // switch floating point on
    std::uint64_t access = 3u << 20;
    check(uc_reg_write(engine_, UC_ARM64_REG_CPACR_EL1, &access), "floating point");
  } else {
    std::uint32_t access = 0;
    check(uc_reg_read(engine_, UC_ARM_REG_C1_C0_2, &access), "floating point");
    access |= 0xfu << 20;
    check(uc_reg_write(engine_, UC_ARM_REG_C1_C0_2, &access), "floating point");
    std::uint32_t enable = 1u << 30;
    check(uc_reg_write(engine_, UC_ARM_REG_FPEXC, &enable), "floating point");
  }
  const auto& traps = memory_.add(kTrapBase, kTrapSize, false, true);
  const std::uint32_t back = wide ? 0xd65f03c0 : 0xe12fff1e;  // ret, bx lr
  for (std::size_t i = 0; i < kTrapSize; i += sizeof back)
    std::memcpy(traps.host + i, &back, sizeof back);
  for (const auto& region : memory_.regions()) map(*region);
  hook(UC_HOOK_CODE, reinterpret_cast<void*>(&trapHook), kTrapBase, kTrapBase + kTrapSize - 1);
  hook(UC_HOOK_MEM_INVALID, reinterpret_cast<void*>(&badAccessHook), 1, 0);
  hook(UC_HOOK_BLOCK, reinterpret_cast<void*>(&blockHook), 1, 0);
  const auto& heap = memory_.heap();
  hook(UC_HOOK_MEM_READ | UC_HOOK_MEM_WRITE, reinterpret_cast<void*>(&heapHook), heap.base,
       heap.base + heap.size - 1);
}

Cpu::~Cpu() {
  if (kept_) uc_context_free(kept_);
  uc_close(engine_);
}

void Cpu::map(const GuestMemory::Region& region) {
  std::uint32_t protection = UC_PROT_READ;
  if (region.writable) protection |= UC_PROT_WRITE;
  if (region.executable) protection |= UC_PROT_EXEC;
  check(uc_mem_map_ptr(engine_, region.base, region.size, protection, region.host), "map");
}

void Cpu::hook(int type, void* function, Address start, Address end) {
  uc_hook handle = 0;
  check(uc_hook_add(engine_, &handle, type, function, this, start, end), "hook");
}

// ---- Registers

Address Cpu::get(int arm64, int armv7) const {
  if (slice_ == Slice::arm64) {
    std::uint64_t value = 0;
    uc_reg_read(engine_, arm64, &value);
    return value;
  }
  std::uint32_t value = 0;
  uc_reg_read(engine_, armv7, &value);
  return value;
}

void Cpu::set(int arm64, int armv7, Address value) {
  if (slice_ == Slice::arm64) {
    uc_reg_write(engine_, arm64, &value);
  } else {
    const auto word = static_cast<std::uint32_t>(value);
    uc_reg_write(engine_, armv7, &word);
  }
}

Address Cpu::integer(unsigned index) const {
  return get(UC_ARM64_REG_X0 + static_cast<int>(index), UC_ARM_REG_R0 + static_cast<int>(index));
}
void Cpu::setInteger(unsigned index, Address value) {
  set(UC_ARM64_REG_X0 + static_cast<int>(index), UC_ARM_REG_R0 + static_cast<int>(index), value);
}
std::uint64_t Cpu::real(unsigned index) const {
  std::uint64_t bits = 0;
  uc_reg_read(engine_, UC_ARM64_REG_D0 + static_cast<int>(index), &bits);
  return bits;
}
void Cpu::setReal(unsigned index, std::uint64_t bits) {
  uc_reg_write(engine_, UC_ARM64_REG_D0 + static_cast<int>(index), &bits);
}
Address Cpu::stackPointer() const { return get(UC_ARM64_REG_SP, UC_ARM_REG_SP); }
void Cpu::setStackPointer(Address value) { set(UC_ARM64_REG_SP, UC_ARM_REG_SP, value); }
Address Cpu::linkRegister() const { return get(UC_ARM64_REG_LR, UC_ARM_REG_LR); }
Address Cpu::framePointer() const { return get(UC_ARM64_REG_FP, UC_ARM_REG_R7); }
Address Cpu::programCounter() const { return get(UC_ARM64_REG_PC, UC_ARM_REG_PC); }

void Cpu::keepRegisters() {
  check(uc_context_alloc(engine_, &kept_), "keep the registers");
  check(uc_context_save(engine_, kept_), "keep the registers");
}
void Cpu::restoreRegisters() { check(uc_context_restore(engine_, kept_), "restore the registers"); }

// ---- Running

void Cpu::run(Address code, Address until) {
  if (slice_ == Slice::armv7 && (code & 1) == 0 && code < kTrapBase)
    throw Fault(fmt::format("code at {:#x} called without its Thumb bit", code));
  const Address stack = stackPointer();
  const Address link = linkRegister();
  set(UC_ARM64_REG_LR, UC_ARM_REG_LR, until);
  const Address enteredAt = stackPointer();
  if (depth_ == 0) blocksRun_ = 0;
  ++depth_;
  const uc_err error = uc_emu_start(engine_, code, until, 0, 0);
  --depth_;
  if (stopped_) std::rethrow_exception(std::exchange(stopped_, nullptr));
  if (error != UC_ERR_OK)
    throw Fault(fmt::format("{} at {:#x}", uc_strerror(error), programCounter()));
  if (programCounter() != until) throw Fault("the code stopped before it returned");
  if (stackPointer() != enteredAt) throw Fault("the code did not restore its stack pointer");
  setStackPointer(stack);
  set(UC_ARM64_REG_LR, UC_ARM_REG_LR, link);
}

void Cpu::stop(std::exception_ptr reason) {
  if (!stopped_) stopped_ = std::move(reason);
  uc_emu_stop(engine_);
}

// Exceptions must not cross the emulator's C frames: they wait in stopped_.
void Cpu::trapHook(uc_engine*, std::uint64_t address, std::uint32_t, void* self) {
  auto& cpu = *static_cast<Cpu*>(self);
  if (cpu.stopped_) return;
  try {
    cpu.trap_(address);
  } catch (...) {
    cpu.stop(std::current_exception());
  }
}

bool Cpu::badAccessHook(uc_engine*, uc_mem_type type, std::uint64_t address, int size, std::int64_t,
                        void* self) {
  auto& cpu = *static_cast<Cpu*>(self);
  const bool fetch = type == UC_MEM_FETCH_UNMAPPED || type == UC_MEM_FETCH_PROT;
  const bool write = type == UC_MEM_WRITE_UNMAPPED || type == UC_MEM_WRITE_PROT;
  cpu.stop(std::make_exception_ptr(Fault(fmt::format("bad {} of {} bytes at {:#x}",
                                                     fetch   ? "jump"
                                                     : write ? "write"
                                                             : "read",
                                                     size, address))));
  return false;
}

void Cpu::heapHook(uc_engine*, uc_mem_type, std::uint64_t address, int size, std::int64_t,
                   void* self) {
  auto& cpu = *static_cast<Cpu*>(self);
  if (cpu.memory_.mayTouchHeap(address, static_cast<std::size_t>(size))) return;
  cpu.stop(std::make_exception_ptr(
      Fault(fmt::format("access of {} bytes at {:#x}, outside of what was handed out or after it "
                        "was freed",
                        size, address))));
}

void Cpu::blockHook(uc_engine*, std::uint64_t, std::uint32_t, void* self) {
  auto& cpu = *static_cast<Cpu*>(self);
  if (++cpu.blocksRun_ == kMostBlocks)
    cpu.stop(std::make_exception_ptr(Fault("the code does not come to an end")));
}

// ---- Measuring

void Cpu::count(Address textStart, Address textEnd, Address stubsStart, Address stubsEnd) {
  const auto own = +[](uc_engine*, std::uint64_t, std::uint32_t, void* self) {
    ++static_cast<Cpu*>(self)->counts_.own;
  };
  const auto stub = +[](uc_engine*, std::uint64_t, std::uint32_t, void* self) {
    ++static_cast<Cpu*>(self)->counts_.stubs;
  };
  hook(UC_HOOK_CODE, reinterpret_cast<void*>(own), textStart, textEnd - 1);
  if (stubsStart < stubsEnd)
    hook(UC_HOOK_CODE, reinterpret_cast<void*>(stub), stubsStart, stubsEnd - 1);
}

void Cpu::watchWrites(Address start, Address end, Address pageSize) {
  writePage_ = pageSize;
  const auto written =
      +[](uc_engine*, uc_mem_type, std::uint64_t address, int, std::int64_t, void* self) {
        auto& cpu = *static_cast<Cpu*>(self);
        cpu.writtenPages_.insert(address / cpu.writePage_ * cpu.writePage_);
      };
  hook(UC_HOOK_MEM_WRITE, reinterpret_cast<void*>(written), start, end - 1);
}

void Cpu::onInstruction(Address start, Address end, std::function<void(Address)> step) {
  steps_.push_back(std::make_unique<std::function<void(Address)>>(std::move(step)));
  const auto call = +[](uc_engine*, std::uint64_t address, std::uint32_t, void* function) {
    (*static_cast<std::function<void(Address)>*>(function))(address);
  };
  uc_hook handle = 0;
  check(uc_hook_add(engine_, &handle, UC_HOOK_CODE, reinterpret_cast<void*>(call),
                    steps_.back().get(), start, end - 1),
        "hook");
}

}  // namespace sim::guest
