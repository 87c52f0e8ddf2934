#include "sim/foundation/block.hpp"

#include "sim/core/class_definition.hpp"
#include "sim/core/device.hpp"
#include "sim/foundation/definitions.hpp"

namespace sim {

namespace {

constexpr std::uint32_t kNeedsFree = 1u << 24;
constexpr std::uint32_t kHasCopyDispose = 1u << 25;
constexpr std::uint32_t kReferenceOne = 2;
constexpr std::uint32_t kReferenceMask = 0xfffe;

}  // namespace

// Layout: isa, int32 flags, int32 reserved, invoke, descriptor; the descriptor: reserved, size,
// copy, dispose. Pointers are as wide as the process's.
Address Block::field(unsigned words, unsigned bytes) const {
  return process.library().readPointer(address + words * process.library().pointerSize() + bytes);
}

Block::~Block() {
  if (where_ == Where::Heap && !heapIsGoing) process.library().deallocate(address);
}

Owned<Object> Block::copied() {
  if (where_ != Where::Stack) return {Ref<Object>(this)};
  Library& library = process.library();
  const unsigned word = library.pointerSize();
  const Address descriptor = field(2, 8);
  const Address size = library.readPointer(descriptor + word);
  std::vector<char> bytes(size);
  library.read(address, bytes.data(), size);
  const Address memory = library.allocate(size);
  library.write(memory, bytes.data(), size);
  std::uint32_t flags = 0;
  library.read(memory + word, &flags, sizeof flags);
  const bool hasHelpers = (flags & kHasCopyDispose) != 0;
  flags = (flags & ~kReferenceMask) | kNeedsFree | kReferenceOne;
  library.write(memory + word, &flags, sizeof flags);
  auto* heap = new Block(process, Where::Heap);
  process.adopt(heap, *isa, memory);
  Ref<Object> result(heap);
  if (hasHelpers)
    library.call(library.readPointer(descriptor + 2 * word), Kind::Void,
                 {Value::of(Kind::Pointer, memory), Value::of(Kind::Pointer, address)});
  return {result};
}

void Block::dispose() {
  if (where_ != Where::Heap) return;
  Library& library = process.library();
  const unsigned word = library.pointerSize();
  std::uint32_t flags = 0;
  library.read(address + word, &flags, sizeof flags);
  if (flags & kHasCopyDispose)
    library.call(library.readPointer(field(2, 8) + 3 * word), Kind::Void,
                 {Value::of(Kind::Pointer, address)});
}

Value Block::invoke(Kind result, std::vector<Value> arguments) {
  const Ref<Object> alive(this);
  arguments.insert(arguments.begin(), Value::object(address));
  const CallSpan span(process.device.callTree, CallTree::Kind::Callback, process.identifier,
                      "<block>");
  return process.library().call(field(1, 8), result, arguments);
}

namespace {

void dealloc(Block& block) {
  block.dispose();
  block.process.destroy(block);
}

}  // namespace

ClassDefinition defineBlock() {
  auto definition = ClassDefinition::of<Block>("NSBlock", "NSObject", Home::everywhere());
  definition.method("copy", &Block::copied);
  auto code = detail::methodCode<Block, void>("dealloc", [](Block& self) { dealloc(self); });
  code.relay = true;
  definition.code(std::move(code));
  return definition;
}

}  // namespace sim
