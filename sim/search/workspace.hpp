// Where a search keeps its many small files. Nothing of a phone; leaves out cleaning up after a
// search that was killed itself.
#pragma once
#include <filesystem>
#include <optional>
#include <string>

namespace sim::search {

// The folder for temporary files: what TMPDIR says, else one in memory where there is room, as a
// device makes and renames many small files.
std::filesystem::path temporaryFolder();

// A folder of its own for all that is made while it lives, also by jobs that died; TMPDIR names it.
class Workspace {
 public:
  Workspace();
  ~Workspace();  // removes it
  Workspace(const Workspace&) = delete;
  Workspace& operator=(const Workspace&) = delete;

 private:
  std::filesystem::path folder_;
  std::optional<std::string> before_;  // what TMPDIR said
};

}  // namespace sim::search
