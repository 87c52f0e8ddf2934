// The library's host build: a shared object, loaded from a fresh copy a process, so that each has
// its own variables and its constructor really runs.
#pragma once
#include <filesystem>
#include <set>

#include "sim/core/library.hpp"

namespace sim {

class HostLibraryLoader final : public LibraryLoader {
 public:
  // `file` is the shared object. It is copied when a process loads it.
  explicit HostLibraryLoader(std::filesystem::path file) : file_(std::move(file)) {}
  std::unique_ptr<Library> load(Process& process) override;
  void setVersion(double version) override;

 private:
  std::filesystem::path file_;
};

}  // namespace sim
