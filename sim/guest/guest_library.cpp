#include "sim/guest/guest_library.hpp"

#include <fmt/format.h>

#include <cstring>
#include <fstream>
#include <iostream>
#include <optional>

#include "sim/core/process.hpp"
#include "sim/guest/back_trace.hpp"
#include "sim/guest/c_library.hpp"
#include "sim/guest/guest_call.hpp"
#include "sim/guest/machine.hpp"
#include "sim/guest/macho_file.hpp"
#include "sim/guest/runtime_metadata.hpp"

namespace sim::guest {

namespace {

std::vector<std::uint8_t> fileContents(const std::filesystem::path& file) {
  std::ifstream in(file, std::ios::binary);
  if (!in) throw std::runtime_error("cannot read " + file.string());
  return {std::istreambuf_iterator<char>(in), {}};
}

}  // namespace

// One process's copy of the image, with a processor and memory of its own.
class GuestLibrary final : public Library {
 public:
  GuestLibrary(GuestLibraryLoader& loader, Process& process)
      : loader_(loader), process_(process), slice_(loader.slice_), machine_(loader.machine()) {
    cpu_.onTrap([this](Address address) { trapped(address); });
    image_.setVersion(loader.version_);
    loader_.living_.insert(this);
    if (loader_.debugging_.steps)
      cpu_.onInstruction(image_.textStart(), image_.textEnd(),
                         [this](Address at) { std::cerr << "  " << image_.place(at) << '\n'; });
    breakAt(loader_.debugging_.breakAt);
    if (loader_.measuring_) measure();
  }
  // What it leaves behind serves another process, unless more is in it than was at the start.
  ~GuestLibrary() override {
    loader_.living_.erase(this);
    if (!loader_.reusing_ || faulted_ || bundle_ || depth_ > 0 || loader_.watches()) return;
    machine_->restore();
    loader_.idle_.push_back(std::move(machine_));
  }

  void runInitialisers() override {
    attachMetadata(image_, memory_, process_, pointerSize());
    const Cost before = loader_.cost_;
    loading_ = true;
    for (const Address code : image_.initialisers())
      call(code, Kind::Void, std::vector<Value>(3, Value::of(Kind::Pointer, 0)));
    loading_ = false;
    loader_.loadCost_ = loader_.cost_ - before;
  }

  void loadBundle() override {
    if (bundle_) return;
    bundle_.emplace(loader_.bundleImage(), "CorvalenPro", kBundleBase, slice_, memory_, traps_);
    for (const auto* region : bundle_->regions()) cpu_.map(*region);
    for (const Address code : bundle_->initialisers())
      call(code, Kind::Void, std::vector<Value>(3, Value::of(Kind::Pointer, 0)));
  }

  Value call(Address code, Kind result, const std::vector<Value>& fixed) override {
    if (loader_.debugging_.calls) std::cerr << "-> " << imageAt(code).place(code) << '\n';
    const Address stack = cpu_.stackPointer();
    ++depth_;
    try {
      cpu_.setStackPointer(stack / 16 * 16);
      placeArguments(slice_, cpu_, memory_, fixed);
      cpu_.run(code, kReturnTrap);
    } catch (const Fault& fault) {
      faulted_ = true;
      if (--depth_ == 0 || !reported_) report(fault);
      cpu_.setStackPointer(stack);
      throw;
    }
    --depth_;
    if (loader_.measuring_) tally();
    const Value value = fetchResult(slice_, cpu_, result);
    cpu_.setStackPointer(stack);
    return value;
  }

  Address expose(std::shared_ptr<const NativeCode> code, bool isMethod) override {
    return traps_.exposed(std::move(code), isMethod);
  }
  Address variable(const std::string& name) override { return image_.variable(name); }

  void read(Address from, void* to, std::size_t size) const override {
    memory_.read(from, to, size);
  }
  void write(Address to, const void* from, std::size_t size) override {
    memory_.write(to, from, size);
  }
  Address allocate(std::size_t size) override { return memory_.allocate(size); }
  void deallocate(Address memory) override { memory_.deallocate(memory); }

  unsigned pointerSize() const override { return guest::pointerSize(slice_); }

  std::vector<std::pair<Address, std::size_t>> variables() const override {
    auto all = image_.variables();
    if (bundle_)
      for (const auto& range : bundle_->variables()) all.push_back(range);
    return all;
  }
  bool isCode(Address address) const override { return traps_.contains(address); }

  std::vector<std::pair<Address, std::size_t>> data() const override {
    auto all = variables();
    for (const auto& block : memory_.blocks()) all.push_back(block);
    return all;
  }

  void setVersion(double version) { image_.setVersion(version); }

 private:
  const LoadedImage& imageAt(Address code) const {
    return bundle_ && bundle_->contains(code) ? *bundle_ : image_;
  }

  void measure() {
    const auto [stubsStart, stubsEnd] = image_.stubs();
    cpu_.count(image_.textStart(), image_.textEnd(), stubsStart, stubsEnd);
    const Address page = slice_ == Slice::arm64 ? 0x4000 : 0x1000;
    for (const auto& [start, size] : image_.variables())
      cpu_.watchWrites(start, start + size, page);
  }

  // Adds what this guest has run since the last time to the loader's count.
  void tally() {
    const InstructionCounts& now = cpu_.counts();
    loader_.cost_.own += now.own - tallied_.own;
    loader_.cost_.stubs += now.stubs - tallied_.stubs;
    loader_.cost_.pages = cpu_.writtenPages().size();
    tallied_ = now;
  }

  // While loading, a call that installs a hook ends a row: what ran since the last observer.
  void noteCall(const Trap& trap) {
    ++loader_.cost_.calls;
    tally();
    if (!loading_) return;
    HookRows& rows = loader_.hookRows_;
    if (trap.name == "CFNotificationCenterAddObserver") {
      rows = {};
      lastObserver_ = loader_.cost_;
    } else if (trap.name == "MSHookMessageEx" || trap.name == "MSHookFunction") {
      ++rows.count;
      rows.own = (loader_.cost_ - lastObserver_).own;
    }
  }

  // The guest called into the platform.
  void trapped(Address address) {
    if (address == kReturnTrap) return;
    const Trap& trap = traps_.at(address);
    if (loader_.measuring_) noteCall(trap);
    if (loader_.debugging_.calls)
      std::cerr << "<- " << trap.name << " from "
                << imageAt(cpu_.linkRegister()).place(cpu_.linkRegister()) << '\n';
    if (isCLibrary(trap.name) && !trap.code) {
      const auto result =
          callCLibrary(trap.name, memory_, {cpu_.integer(0), cpu_.integer(1), cpu_.integer(2)});
      placeResult(slice_, cpu_, Value::of(Kind::Pointer, result.value_or(0)));
      return;
    }
    GuestArguments arguments(slice_, cpu_, memory_);
    const Value result = trap.code ? process_.callFromLibrary(trap.code, trap.isMethod, arguments)
                                   : process_.functionFromLibrary(trap.name, arguments);
    placeResult(slice_, cpu_, result);
  }

  // Once a fault, where it struck.
  void report(const Fault& fault) {
    reported_ = true;
    std::cerr << fmt::format("{}: {}\n", process_.identifier, fault.what())
              << backTrace(slice_, cpu_, memory_, imageAt(cpu_.programCounter()));
  }

  void breakAt(const std::string& symbol) {
    if (symbol.empty()) return;
    const Address address = image_.find(symbol);
    if (!address) throw std::runtime_error("no symbol " + symbol + " in the binary");
    cpu_.onInstruction(address, address + 1, [this](Address at) {
      std::cerr << "at " << image_.place(at) << '\n' << backTrace(slice_, cpu_, memory_, image_);
    });
  }

  GuestLibraryLoader& loader_;
  Process& process_;
  Slice slice_;
  std::unique_ptr<Machine> machine_;
  GuestMemory& memory_ = machine_->memory;
  Traps& traps_ = machine_->traps;
  Cpu& cpu_ = machine_->cpu;
  LoadedImage& image_ = machine_->image;
  std::optional<LoadedImage> bundle_;
  int depth_ = 0;
  bool faulted_ = false;
  bool reported_ = false;
  InstructionCounts tallied_;
  bool loading_ = false;
  Cost lastObserver_;
};

std::vector<Slice> slicesOf(const std::filesystem::path& file) {
  return slicesIn(fileContents(file));
}

GuestLibraryLoader::GuestLibraryLoader(const std::filesystem::path& file, Slice slice,
                                       GuestDebugging debugging)
    : slice_(slice), debugging_(std::move(debugging)) {
  image_ = std::make_shared<const MachOImage>(loadMachO(fileContents(file), slice));
  bundle = file.parent_path() / kBundleName;
}

GuestLibraryLoader::~GuestLibraryLoader() = default;

const MachOImage& GuestLibraryLoader::bundleImage() {
  if (!bundleImage_)
    bundleImage_ =
        std::make_shared<const MachOImage>(loadMachO(fileContents(bundleExecutable()), slice_));
  return *bundleImage_;
}

bool GuestLibraryLoader::watches() const {
  return measuring_ || debugging_.steps || !debugging_.breakAt.empty();
}

std::unique_ptr<Machine> GuestLibraryLoader::machine() {
  if (idle_.empty()) return std::make_unique<Machine>(*image_, slice_);
  auto machine = std::move(idle_.back());
  idle_.pop_back();
  return machine;
}

std::unique_ptr<Library> GuestLibraryLoader::load(Process& process) {
  return std::make_unique<GuestLibrary>(*this, process);
}

FixUps GuestLibraryLoader::fixUps(Address pageSize) const {
  FixUps all;
  std::set<Address> pages;
  all.rebases = image_->rebases.size();
  for (const Address at : image_->rebases) pages.insert(at / pageSize);
  for (const Bind& bind : image_->binds) {
    ++(bind.lazy ? all.lazyBinds : all.binds);
    if (!bind.lazy) pages.insert(bind.address / pageSize);
  }
  all.pages = pages.size();
  return all;
}

void GuestLibraryLoader::setVersion(double version) {
  version_ = version;
  for (GuestLibrary* library : living_) library->setVersion(version);
}

}  // namespace sim::guest
