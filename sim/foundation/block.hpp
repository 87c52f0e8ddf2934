// Block objects: literals in the library's memory and the copies that the platform makes of them.
// Stands in for libsystem_blocks; leaves out shared variables (`__block`) and blocks that return
// structures.
#pragma once
#include "sim/core/process.hpp"

namespace sim {

class Block final : public Object {
 public:
  enum class Where : std::uint8_t { Stack, Global, Heap };

  Block(Process& process, Where where) : Object(process), where_(where) {}
  ~Block() override;

  std::string description() const override { return "<block>"; }
  // A literal lives as long as its memory does, whatever is counted.
  bool immortal() const override { return where_ != Where::Heap; }

  // What the `copy` message answers: a stack block moves to the heap, a heap block gains a
  // reference, a global one is itself.
  Owned<Object> copied();
  // Runs the block's destructor for its captures. For heap blocks, before they go.
  void dispose();

  // Calls the block with these arguments.
  Value invoke(Kind result, std::vector<Value> arguments);

 private:
  Address field(unsigned words, unsigned bytes) const;
  Where where_;
};

}  // namespace sim
