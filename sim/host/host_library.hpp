// The library's host build: a shared object, loaded from a fresh copy a process, so that each has
// its own variables and its constructor really runs.
#pragma once
#include <filesystem>
#include <set>

#include "sim/core/library.hpp"

namespace sim {

// Copies of a shared object that are not loaded at the moment. The same copy, loaded again after it
// was unloaded, is as fresh as a new one.
class SpareCopies {
 public:
  explicit SpareCopies(std::filesystem::path file) : file_(std::move(file)) {}
  ~SpareCopies();
  SpareCopies(const SpareCopies&) = delete;
  SpareCopies& operator=(const SpareCopies&) = delete;
  std::filesystem::path take();
  void giveBack(std::filesystem::path copy) { spare_.push_back(std::move(copy)); }

 private:
  std::filesystem::path file_;
  std::vector<std::filesystem::path> spare_;
};

class HostLibraryLoader final : public LibraryLoader {
 public:
  // `file` is the shared object. Each process loads a copy of its own.
  // The settings bundle lies beside it, unless another one is named.
  explicit HostLibraryLoader(const std::filesystem::path& file,
                             const std::filesystem::path& bundle = {})
      : copies_(std::make_shared<SpareCopies>(file)) {
    this->bundle = bundle.empty() ? file.parent_path() / kBundleName : bundle;
    bundleCopies_ = std::make_shared<SpareCopies>(bundleExecutable());
  }
  std::unique_ptr<Library> load(Process& process) override;
  void setVersion(double version) override;

 private:
  std::shared_ptr<SpareCopies> copies_;
  std::shared_ptr<SpareCopies> bundleCopies_;
};

}  // namespace sim
