#include "sim/core/files.hpp"

namespace sim {

const std::string* Files::read(const std::string& path) const {
  const auto found = files_.find(path);
  return found == files_.end() ? nullptr : &found->second.bytes;
}

bool Files::write(const std::string& path, std::string bytes) {
  if (isFolder(path)) return false;
  files_[path] = {std::move(bytes), nullptr};
  ++changes_;
  return true;
}

void Files::remove(const std::string& path) { changes_ += files_.erase(path); }

std::vector<std::string> Files::all() const {
  std::vector<std::string> paths;
  for (const auto& [path, file] : files_) paths.push_back(path);
  return paths;
}

std::shared_ptr<const void>& Files::derived(const std::string& path) const {
  return files_.at(path).derived;
}

}  // namespace sim
