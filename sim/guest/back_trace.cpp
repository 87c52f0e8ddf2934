#include "sim/guest/back_trace.hpp"

#include <fmt/format.h>

namespace sim::guest {

namespace {

constexpr int kMostFrames = 64;

std::string registers(Slice slice, const Cpu& cpu) {
  std::string text;
  const unsigned count = slice == Slice::arm64 ? 31 : 13;
  const unsigned digits = slice == Slice::arm64 ? 16 : 8;
  // Registers from x29 on are not numbered in sequence by the emulator.
  const unsigned shown = slice == Slice::arm64 ? 29 : count;
  for (unsigned i = 0; i < shown; ++i)
    text += fmt::format("  {}{:<2} {:0{}x}{}", slice == Slice::arm64 ? 'x' : 'r', i, cpu.integer(i),
                        digits, i % 4 == 3 ? "\n" : "");
  if (shown % 4 != 0) text += '\n';
  return text + fmt::format("  fp  {:0{}x}  lr  {:0{}x}  sp  {:0{}x}  pc  {:0{}x}\n",
                            cpu.framePointer(), digits, cpu.linkRegister(), digits,
                            cpu.stackPointer(), digits, cpu.programCounter(), digits);
}

}  // namespace

std::string backTrace(Slice slice, const Cpu& cpu, const GuestMemory& memory,
                      const LoadedImage& image) {
  std::string text = registers(slice, cpu);
  text += fmt::format("  #0 {}\n", image.place(cpu.programCounter()));
  text += fmt::format("  #1 {}\n", image.place(cpu.linkRegister()));
  // Frames are linked: each frame pointer points at the caller's, beside the return address.
  Address frame = cpu.framePointer();
  const unsigned word = pointerSize(slice);
  for (int i = 2; i < kMostFrames && frame != 0; ++i) {
    Address next = 0;
    Address back = 0;
    try {
      memory.read(frame, &next, word);
      memory.read(frame + word, &back, word);
    } catch (const Fault&) {
      break;  // the chain ends in garbage: show what there was
    }
    text += fmt::format("  #{} {}\n", i, image.place(back));
    if (next <= frame) break;
    frame = next;
  }
  return text;
}

}  // namespace sim::guest
