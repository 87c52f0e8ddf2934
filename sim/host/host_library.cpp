#include "sim/host/host_library.hpp"

#include <ffi.h>

#include <cstring>

#include "sim/core/process.hpp"
#include "sim/host/loaded_copy.hpp"

// ---- The variables that the library links against ----------------------------------------------

extern "C" {
// Not const here: it is the simulated device's to set.
extern double simVersionNumber __asm("_kCFCoreFoundationVersionNumber");
extern int simConstantString[4] __asm("___CFConstantStringClassReference");
extern void* simStackBlock[32] __asm("__NSConcreteStackBlock");
extern void* simGlobalBlock[32] __asm("__NSConcreteGlobalBlock");
extern char simMainQueue[64] __asm("__dispatch_main_q");
double simVersionNumber = 0;
int simConstantString[4] = {};
void* simStackBlock[32] = {};
void* simGlobalBlock[32] = {};
char simMainQueue[64] = {};
extern const char simThunks[];
}

namespace sim {
namespace {

constexpr const char* kImports[] = {
#define IMPORT(name) #name,
#include "sim/host/imports.def"
#undef IMPORT
};
constexpr unsigned kFirstThunk = 1000;  // as in entry_x86_64.S
constexpr unsigned kThunks = 4096;
constexpr unsigned kThunkSize = 16;

// What simCommonEntry saves: System V argument registers and where stack arguments start.
struct Frame {
  std::uint64_t integers[6];
  double reals[8];
  const std::uint64_t* stack;
  std::uint64_t result;
  double realResult;
};

class FrameArguments final : public ArgumentSource {
 public:
  explicit FrameArguments(const Frame& frame) : frame_(frame) {}
  Value next(Kind kind) override {
    if (kind == Kind::Double || kind == Kind::Float) return real(kind);
    const std::uint64_t word =
        integers_ < 6 ? frame_.integers[integers_++] : frame_.stack[stack_++];
    return {kind, narrowed(kind, word)};
  }
  void beginVariadic() override {}  // no difference in this convention

  static std::uint64_t narrowed(Kind kind, std::uint64_t word) {
    switch (kind) {
      case Kind::Bool:
        return (word & 0xff) != 0;
      case Kind::Int8:
        return static_cast<std::uint64_t>(static_cast<std::int8_t>(word));
      case Kind::UInt8:
        return word & 0xff;
      case Kind::Int32:
        return static_cast<std::uint64_t>(static_cast<std::int32_t>(word));
      case Kind::UInt32:
        return word & 0xffffffff;
      default:
        return word;
    }
  }

 private:
  Value real(Kind kind) {
    double value = 0;
    if (reals_ < 8)
      value = frame_.reals[reals_++];
    else
      std::memcpy(&value, &frame_.stack[stack_++], sizeof value);
    if (kind == Kind::Float)
      value = static_cast<double>(
          std::bit_cast<float>(static_cast<std::uint32_t>(std::bit_cast<std::uint64_t>(value))));
    return {kind, std::bit_cast<std::uint64_t>(value)};
  }
  const Frame& frame_;
  unsigned integers_ = 0;
  unsigned reals_ = 0;
  unsigned stack_ = 0;
};

struct Thunk {
  Process* process = nullptr;
  std::shared_ptr<const NativeCode> code;
  bool isMethod = false;
};
Thunk thunks[kThunks];
thread_local Process* running = nullptr;  // whose library is on the stack

// Makes `process` the running one for the life of the object.
class Running {
 public:
  explicit Running(Process& process) : before_(std::exchange(running, &process)) {}
  ~Running() { running = before_; }
  Running(const Running&) = delete;
  Running& operator=(const Running&) = delete;

 private:
  Process* before_;
};

ffi_type* ffiType(Kind kind) {
  switch (kind) {
    case Kind::Void:
      return &ffi_type_void;
    case Kind::Bool:
    case Kind::UInt8:
      return &ffi_type_uint8;
    case Kind::Int8:
      return &ffi_type_sint8;
    case Kind::Int32:
      return &ffi_type_sint32;
    case Kind::UInt32:
      return &ffi_type_uint32;
    case Kind::Long:
    case Kind::Int64:
      return &ffi_type_sint64;
    case Kind::ULong:
    case Kind::UInt64:
      return &ffi_type_uint64;
    case Kind::Float:
      return &ffi_type_float;
    case Kind::Double:
      return &ffi_type_double;
    case Kind::Object:
    case Kind::Class:
    case Kind::Selector:
    case Kind::Pointer:
    case Kind::CString:
      return &ffi_type_pointer;
  }
  return &ffi_type_void;
}

class HostLibrary final : public Library {
 public:
  HostLibrary(Process& process, std::shared_ptr<LoadedCopies> copies,
              std::shared_ptr<LoadedCopies> bundleCopies)
      : process_(process),
        copies_(std::move(copies)),
        bundleCopies_(std::move(bundleCopies)),
        library_(copies_->take()) {}

  ~HostLibrary() override {
    if (bundle_) bundleCopies_->giveBack(std::move(bundle_));
    copies_->giveBack(std::move(library_));
    for (const unsigned index : taken_) thunks[index] = {};
    for (const auto& [memory, size] : memory_) std::free(reinterpret_cast<void*>(memory));
  }

  void runInitialisers() override {
    const Running entered(process_);
    library_->initialise();
  }

  void loadBundle() override {
    if (bundle_) return;
    bundle_ = bundleCopies_->take();
    const Running entered(process_);
    bundle_->initialise();
  }

  Value call(Address code, Kind result, const std::vector<Value>& fixed) override {
    const Running entered(process_);
    std::vector<ffi_type*> types;
    std::vector<std::uint64_t> cells(fixed.size());
    std::vector<void*> pointers;
    for (std::size_t i = 0; i < fixed.size(); ++i) {
      types.push_back(ffiType(fixed[i].kind));
      cells[i] = fixed[i].bits;
      if (fixed[i].kind == Kind::Float)
        cells[i] = std::bit_cast<std::uint32_t>(static_cast<float>(fixed[i].asReal()));
      pointers.push_back(&cells[i]);
    }
    ffi_cif cif;
    ffi_prep_cif(&cif, FFI_DEFAULT_ABI, static_cast<unsigned>(types.size()), ffiType(result),
                 types.data());
    std::uint64_t out = 0;
    ffi_call(&cif, reinterpret_cast<void (*)()>(code), &out, pointers.data());
    if (result == Kind::Void) return Value::none();
    return {result, FrameArguments::narrowed(result, out)};
  }

  Address expose(std::shared_ptr<const NativeCode> code, bool isMethod) override {
    for (unsigned i = 0; i < kThunks; ++i) {
      if (thunks[i].process) continue;
      thunks[i] = {&process_, std::move(code), isMethod};
      taken_.push_back(i);
      return reinterpret_cast<Address>(simThunks) + Address{i} * kThunkSize;
    }
    throw std::runtime_error("out of entries for platform code");
  }

  Address variable(const std::string& name) override {
    if (name == "__CFConstantStringClassReference")
      return reinterpret_cast<Address>(simConstantString);
    if (name == "_NSConcreteStackBlock") return reinterpret_cast<Address>(simStackBlock);
    if (name == "_NSConcreteGlobalBlock") return reinterpret_cast<Address>(simGlobalBlock);
    if (name == "_dispatch_main_q") return reinterpret_cast<Address>(simMainQueue);
    throw std::logic_error("no variable " + name);
  }

  void read(Address from, void* to, std::size_t size) const override {
    check(from, size);
    std::memcpy(to, reinterpret_cast<const void*>(from), size);
  }
  // Most texts stand in the library's image: searched at once up to the end of their segment.
  std::string readText(Address from) const override {
    const auto* text = reinterpret_cast<const char*>(from);
    const LoadedCopy::Range* range = rangeOf(from);
    const std::size_t most = range ? range->start + range->size - from : 0;
    const std::size_t length = strnlen(text, most);
    return length < most ? std::string(text, length) : Library::readText(from);
  }
  void write(Address to, const void* from, std::size_t size) override {
    check(to, size);
    std::memcpy(reinterpret_cast<void*>(to), from, size);
  }

  Address allocate(std::size_t size) override {
    const auto memory = reinterpret_cast<Address>(std::calloc(1, size));
    memory_[memory] = size;
    return memory;
  }
  void deallocate(Address memory) override { freed_.insert(memory); }  // kept: never reused

  unsigned pointerSize() const override { return sizeof(void*); }

  // Sanitizers put guards between variables, which a search over all of them must read.
  __attribute__((no_sanitize_address)) Address dataWord(Address at) const override {
    return *reinterpret_cast<const volatile Address*>(at);
  }

  std::vector<std::pair<Address, std::size_t>> variables() const override {
    std::vector<std::pair<Address, std::size_t>> all;
    eachRange([&](const LoadedCopy::Range& range) {
      if (range.writable) all.emplace_back(range.start, range.size);
    });
    return all;
  }
  // Nothing is bound at its first call here.
  bool isCode(Address) const override { return false; }

  std::vector<std::pair<Address, std::size_t>> data() const override {
    auto all = variables();
    for (const auto& [memory, size] : memory_)
      if (!freed_.contains(memory)) all.emplace_back(memory, size);
    return all;
  }

 private:
  // The part of an image that the address lies in; null if it is none. Borrowed.
  const LoadedCopy::Range* rangeOf(Address address) const {
    for (const LoadedCopy* image : {library_.get(), bundle_.get()}) {
      if (!image) continue;
      for (const auto& range : image->ranges())
        if (address >= range.start && address < range.start + range.size) return &range;
    }
    return nullptr;
  }
  template <class Each>
  void eachRange(Each each) const {
    for (const auto& range : library_->ranges()) each(range);
    if (!bundle_) return;
    for (const auto& range : bundle_->ranges()) each(range);
  }

  void check(Address address, std::size_t size) const {
    const LoadedCopy::Range* range = rangeOf(address);
    if (range && address + size <= range->start + range->size) return;
    const auto block = memory_.upper_bound(address);
    if (block != memory_.begin()) {
      const auto& [start, length] = *std::prev(block);
      if (address >= start && address + size <= start + length) {
        if (freed_.contains(start)) throw Fault("use of freed memory");
        return;
      }
    }
    // The stack: everything between here and where the program began is in use.
    const auto here = reinterpret_cast<Address>(__builtin_frame_address(0));
    if (address >= here && address < here + (Address{64} << 20)) return;
    for (const void* variable :
         {static_cast<const void*>(simConstantString), static_cast<const void*>(simStackBlock),
          static_cast<const void*>(simGlobalBlock)})
      if (address == reinterpret_cast<Address>(variable)) return;
    throw Fault("access to memory that is not the process's");
  }

  Process& process_;
  std::shared_ptr<LoadedCopies> copies_;
  std::shared_ptr<LoadedCopies> bundleCopies_;
  std::unique_ptr<LoadedCopy> library_;
  std::unique_ptr<LoadedCopy> bundle_;  // once it was asked for
  std::vector<unsigned> taken_;
  std::map<Address, std::size_t> memory_;
  std::set<Address> freed_;
};

}  // namespace

HostLibraryLoader::HostLibraryLoader(const std::filesystem::path& file)
    : copies_(std::make_shared<LoadedCopies>(file)) {
  bundle = file.parent_path() / kBundleName;
  bundleCopies_ = std::make_shared<LoadedCopies>(bundleExecutable());
}

std::unique_ptr<Library> HostLibraryLoader::load(Process& process) {
  return std::make_unique<HostLibrary>(process, copies_, bundleCopies_);
}

void HostLibraryLoader::setVersion(double version) { simVersionNumber = version; }

}  // namespace sim

// Called from entry_x86_64.S for every call of the library into the platform.
extern "C" void simHostEntry(sim::Frame* frame, unsigned number);
void simHostEntry(sim::Frame* frame, unsigned number) {
  if (sim::isLoadingCopy()) {
    frame->result = 0;
    frame->realResult = 0;
    return;
  }
  sim::FrameArguments arguments(*frame);
  sim::Value result;
  if (number < sim::kFirstThunk) {
    static const std::vector<std::string> kNames(std::begin(sim::kImports),
                                                 std::end(sim::kImports));
    result = sim::running->functionFromLibrary(kNames[number], arguments);
  } else {
    const sim::Thunk& thunk = sim::thunks[number - sim::kFirstThunk];
    if (!thunk.process) throw sim::Fault("call of platform code that is gone");
    const auto code = thunk.code;
    result = thunk.process->callFromLibrary(code, thunk.isMethod, arguments);
  }
  frame->result = result.isReal() ? 0 : result.bits;
  frame->realResult = result.isReal() ? result.asReal() : 0;
}
