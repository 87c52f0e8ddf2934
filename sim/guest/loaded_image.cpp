#include "sim/guest/loaded_image.hpp"

#include <cxxabi.h>
#include <fmt/format.h>

#include <algorithm>
#include <cstring>

#include "sim/guest/c_library.hpp"
#include "sim/guest/macho_file.hpp"

namespace sim::guest {

namespace {

constexpr Address kVariablesBase = 0x21000000;  // the platform's variables
constexpr std::size_t kVariablesSize = 0x4000;
constexpr std::size_t kHostPage = 0x1000;

struct Variable {
  const char* name;
  Address offset;
};
constexpr Variable kVariables[] = {
    {"kCFCoreFoundationVersionNumber", 0}, {"__CFConstantStringClassReference", 0x100},
    {"_NSConcreteStackBlock", 0x200},      {"_NSConcreteGlobalBlock", 0x300},
    {"_dispatch_main_q", 0x400},           {"_objc_empty_cache", 0x500},
};
constexpr std::string_view kClassImport = "_OBJC_CLASS_$_";
constexpr std::string_view kMetaclassImport = "_OBJC_METACLASS_$_";

bool isClassImport(const std::string& name) {
  return name.starts_with(kClassImport) || name.starts_with(kMetaclassImport);
}

constexpr const char* kImports[] = {
#define IMPORT(name) #name,
#include "sim/host/imports.def"
#undef IMPORT
};

}  // namespace

const GuestMemory::Region& mapPlatformVariables(GuestMemory& memory) {
  return memory.add(kVariablesBase, kVariablesSize, true, false);
}

LoadedImage::LoadedImage(const MachOImage& image, std::string name, Address base, Slice slice,
                         GuestMemory& memory, Traps& traps)
    : image_(image), name_(std::move(name)), base_(base), slice_(slice), memory_(memory) {
  mapSegments();
  applyFixups(traps);
}

void LoadedImage::mapSegments() {
  for (const Segment& segment : image_.segments) {
    const std::size_t size = (segment.size + kHostPage - 1) / kHostPage * kHostPage;
    if (size == 0) continue;
    const auto& region =
        memory_.add(base_ + segment.address, size, segment.writable, segment.executable);
    if (!segment.contents.empty())
      std::memcpy(region.host, segment.contents.data(), segment.contents.size());
    regions_.push_back(&region);
  }
}

void LoadedImage::store(Address at, Address value) {
  memory_.patch(base_ + at, &value, pointerSize(slice_));
}

Address LoadedImage::addressOf(const std::string& import, Traps& traps) const {
  const std::string name = import.starts_with('_') ? import.substr(1) : import;
  for (const Variable& known : kVariables)
    if (name == known.name) return kVariablesBase + known.offset;
  const bool known = std::ranges::any_of(kImports, [&](const char* f) { return name == f; });
  if (known || isCLibrary(name) || name == "dyld_stub_binder") return traps.imported(name);
  throw std::runtime_error("the binary imports " + import + ", which the platform does not have");
}

void LoadedImage::applyFixups(Traps& traps) {
  for (const std::uint64_t at : image_.rebases) {
    Address value = 0;
    memory_.read(base_ + at, &value, pointerSize(slice_));
    store(at, value + base_);
  }
  for (const Bind& bind : image_.binds)
    if (!isClassImport(bind.symbol))
      store(bind.address, addressOf(bind.symbol, traps) + static_cast<Address>(bind.addend));
}

void LoadedImage::bindClasses(const ClassAddress& addressOf) {
  for (const Bind& bind : image_.binds) {
    if (!isClassImport(bind.symbol)) continue;
    const bool meta = bind.symbol.starts_with(kMetaclassImport);
    store(bind.address,
          addressOf(bind.symbol.substr((meta ? kMetaclassImport : kClassImport).size()), meta));
  }
}

std::vector<Address> LoadedImage::initialisers() const {
  std::vector<Address> all;
  const unsigned word = pointerSize(slice_);
  for (const Section& section : image_.sections)
    for (std::uint64_t at = 0; section.holdsInitialisers && at + word <= section.size; at += word) {
      Address code = 0;
      memory_.read(base_ + section.address + at, &code, word);
      all.push_back(code);
    }
  return all;
}

Address LoadedImage::variable(const std::string& name) const {
  for (const Variable& known : kVariables)
    if (name == known.name) return kVariablesBase + known.offset;
  throw std::logic_error("no variable " + name);
}

void LoadedImage::setVersion(double version) {
  memory_.patch(variable("kCFCoreFoundationVersionNumber"), &version, sizeof version);
}

std::vector<std::pair<Address, std::size_t>> LoadedImage::variables() const {
  std::vector<std::pair<Address, std::size_t>> all;
  for (const Segment& segment : image_.segments)
    if (segment.writable) all.emplace_back(base_ + segment.address, segment.size);
  return all;
}

std::pair<Address, Address> LoadedImage::section(const std::string& name) const {
  for (const Section& section : image_.sections)
    if (section.name == name)
      return {base_ + section.address, base_ + section.address + section.size};
  return {0, 0};
}

std::pair<Address, Address> LoadedImage::stubs() const {
  Address start = 0;
  Address end = 0;
  for (const Section& section : image_.sections) {
    if (section.name.find("stub") == std::string::npos) continue;
    const Address first = base_ + section.address;
    start = start ? std::min(start, first) : first;
    end = std::max(end, first + section.size);
  }
  return {start, end};
}

bool LoadedImage::contains(Address address) const {
  return address >= base_ && address < base_ + image_.size;
}

std::string LoadedImage::place(Address address) const {
  if (!contains(address)) return fmt::format("{:#x}", address);
  const Address offset = (address - base_) & ~Address{slice_ == Slice::armv7};
  std::string text = fmt::format("{}+{:#x}", name_, offset);
  const auto after = std::ranges::upper_bound(image_.symbols, offset, {}, &Symbol::address);
  if (after == image_.symbols.begin()) return text;
  const Symbol& symbol = *std::prev(after);
  return fmt::format("{}+{:#x} ({})", readableSymbol(symbol.name), offset - symbol.address, text);
}

Address LoadedImage::find(const std::string& name) const {
  for (const Symbol& symbol : image_.symbols)
    if (symbol.name == name || symbol.name == "_" + name ||
        readableSymbol(symbol.name).starts_with(name))
      return base_ + symbol.address;
  return 0;
}

std::string readableSymbol(const std::string& symbol) {
  const std::string mangled = symbol.starts_with("__Z") ? symbol.substr(1) : symbol;
  int status = 0;
  char* readable = abi::__cxa_demangle(mangled.c_str(), nullptr, nullptr, &status);
  if (status != 0 || !readable) return symbol;
  std::string text(readable);
  std::free(readable);
  return text;
}

}  // namespace sim::guest
