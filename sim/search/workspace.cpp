#include "sim/search/workspace.hpp"

#include <unistd.h>

#include <cstdlib>
#include <stdexcept>

namespace sim::search {

namespace fs = std::filesystem;

fs::path temporaryFolder() {
  constexpr std::uintmax_t kRoom = std::uintmax_t{256} << 20;
  const fs::path memory = "/dev/shm";
  std::error_code error;
  if (!getenv("TMPDIR") && access(memory.c_str(), W_OK) == 0 &&
      fs::space(memory, error).available >= kRoom && !error)
    return memory;
  return fs::temp_directory_path();
}

Workspace::Workspace() {
  std::string pattern = (temporaryFolder() / "corvalen-XXXXXX").string();
  if (!mkdtemp(pattern.data())) throw std::runtime_error("cannot make " + pattern);
  folder_ = pattern;
  if (const char* before = getenv("TMPDIR")) before_ = before;
  setenv("TMPDIR", folder_.c_str(), 1);
}

Workspace::~Workspace() {
  std::error_code ignored;
  fs::remove_all(folder_, ignored);
  if (before_)
    setenv("TMPDIR", before_->c_str(), 1);
  else
    unsetenv("TMPDIR");
}

}  // namespace sim::search
