// The library's host build: a shared object, of which each process has a copy, so that variables
// are its own and the constructor really runs. Stands in for dyld; leaves out walls between
// processes: all share the program's memory, and only what the world itself reads and writes for
// them is checked.
#pragma once
#include <filesystem>

#include "sim/core/library.hpp"

namespace sim {

class LoadedCopies;

class HostLibraryLoader final : public LibraryLoader {
 public:
  // `file` is the shared object. Each process loads a copy of its own.
  // The settings bundle lies beside it.
  explicit HostLibraryLoader(const std::filesystem::path& file);
  std::unique_ptr<Library> load(Process& process) override;
  void setVersion(double version) override;

 private:
  std::shared_ptr<LoadedCopies> copies_;
  std::shared_ptr<LoadedCopies> bundleCopies_;
};

}  // namespace sim
