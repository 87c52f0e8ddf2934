#include "sim/host/loaded_copy.hpp"

#include <dlfcn.h>
#include <link.h>
#include <unistd.h>

#include <algorithm>
#include <cstdlib>
#include <cstring>
#include <stdexcept>
#include <utility>

// kCFCoreFoundationVersionNumber, as the library sees it.
extern "C" double simVersionNumber __asm("_kCFCoreFoundationVersionNumber");

namespace sim {

namespace {

#if defined(__SANITIZE_ADDRESS__)
constexpr bool kWatched = true;
#elif defined(__has_feature)
#if __has_feature(address_sanitizer)
constexpr bool kWatched = true;
#else
constexpr bool kWatched = false;
#endif
#else
constexpr bool kWatched = false;
#endif

bool wantsFreshCopies() {
  static const bool wanted = kWatched || std::getenv("CORVALEN_FRESH_COPIES") != nullptr;
  return wanted;
}

bool loading = false;
constexpr std::uintptr_t kPage = 4096;

std::filesystem::path freshPath(const std::filesystem::path& file) {
  static unsigned copies = 0;
  return std::filesystem::temp_directory_path() /
         ("corvalen-" + std::to_string(getpid()) + "-" + std::to_string(++copies) +
          file.extension().string());
}

}  // namespace

bool isLoadingCopy() { return loading; }

LoadedCopy::LoadedCopy(const std::filesystem::path& file) {
  const auto copy = freshPath(file);
  std::filesystem::copy_file(file, copy, std::filesystem::copy_options::overwrite_existing);
  loading = true;
  const double version = std::exchange(simVersionNumber, 0);
  handle_ = dlopen(copy.c_str(), RTLD_NOW | RTLD_LOCAL);
  simVersionNumber = version;
  loading = false;
  std::error_code ignored;
  std::filesystem::remove(copy, ignored);  // what is mapped stays
  if (!handle_) throw std::runtime_error(dlerror());
  findSegments();
  findConstructor();
}

LoadedCopy::~LoadedCopy() { dlclose(handle_); }

void LoadedCopy::findSegments() {
  link_map* map = nullptr;
  dlinfo(handle_, RTLD_DI_LINKMAP, &map);
  base_ = map->l_addr;
  dl_iterate_phdr(
      [](dl_phdr_info* info, std::size_t, void* data) {
        auto& self = *static_cast<LoadedCopy*>(data);
        if (info->dlpi_addr != self.base_) return 0;
        std::uintptr_t readOnlyAgain = 0;  // up to here, once relocations are done
        for (int i = 0; i < info->dlpi_phnum; ++i) {
          const auto& header = info->dlpi_phdr[i];
          const std::uintptr_t start = info->dlpi_addr + header.p_vaddr;
          const bool writable = (header.p_flags & PF_W) != 0;
          if (header.p_type == PT_LOAD) self.ranges_.push_back({start, header.p_memsz, writable});
          if (header.p_type == PT_GNU_RELRO)
            readOnlyAgain = (start + header.p_memsz) / kPage * kPage;
        }
        for (const Range& range : self.ranges_) {
          if (!range.writable || kWatched) continue;
          const std::uintptr_t start = std::max(range.start, readOnlyAgain);
          const auto* bytes = reinterpret_cast<const char*>(start);
          self.saved_.push_back({reinterpret_cast<void*>(start),
                                 {bytes, bytes + (range.start + range.size - start)}});
        }
        return 1;
      },
      this);
}

// The code's one constructor comes last, after those of the compiler's own.
void LoadedCopy::findConstructor() {
  link_map* map = nullptr;
  dlinfo(handle_, RTLD_DI_LINKMAP, &map);
  const void* array = nullptr;
  std::size_t count = 0;
  for (const auto* entry = map->l_ld; entry->d_tag != DT_NULL; ++entry) {
    if (entry->d_tag == DT_INIT_ARRAY)
      array = reinterpret_cast<const void*>(base_ + entry->d_un.d_ptr);
    if (entry->d_tag == DT_INIT_ARRAYSZ) count = entry->d_un.d_val / sizeof(void*);
  }
  if (count == 0) throw std::runtime_error("a library without a constructor");
  constructor_ = static_cast<void (*const*)()>(array)[count - 1];
}

void LoadedCopy::reset() {
  for (const Saved& saved : saved_) std::memcpy(saved.at, saved.bytes.data(), saved.bytes.size());
}

void LoadedCopy::initialise() const { constructor_(); }

std::unique_ptr<LoadedCopy> LoadedCopies::take() {
  if (spare_.empty()) return std::make_unique<LoadedCopy>(file_);
  auto copy = std::move(spare_.back());
  spare_.pop_back();
  copy->reset();
  return copy;
}

void LoadedCopies::giveBack(std::unique_ptr<LoadedCopy> copy) {
  if (!wantsFreshCopies()) spare_.push_back(std::move(copy));
}

}  // namespace sim
