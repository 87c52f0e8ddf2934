#include "sim/serve/files.hpp"

#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstdlib>
#include <fstream>
#include <map>
#include <regex>
#include <system_error>

namespace sim::serve {

namespace fs = std::filesystem;

namespace {

const std::map<std::string, std::string> kTypes = {{".html", "text/html; charset=utf-8"},
                                                   {".css", "text/css; charset=utf-8"},
                                                   {".js", "text/javascript; charset=utf-8"},
                                                   {".txt", "text/plain; charset=utf-8"},
                                                   {".svg", "image/svg+xml"}};

std::optional<File> contents(const fs::path& file, const std::string& type) {
  std::ifstream in(file, std::ios::binary);
  if (!in || !fs::is_regular_file(file)) return {};
  return File{type, std::string(std::istreambuf_iterator<char>(in), {})};
}

bool isScenario(const fs::directory_entry& entry) {
  std::error_code failed;
  return entry.path().extension() == ".txt" && !entry.is_symlink(failed) &&
         entry.is_regular_file(failed) && entry.file_size(failed) <= kLongestText && !failed;
}

// `Iterator` goes through the folder alone, or through all below.
template <typename Iterator>
std::vector<std::string> textFiles(const fs::path& folder) {
  std::vector<std::string> files;
  std::error_code failed;
  for (Iterator entry(folder, fs::directory_options::skip_permission_denied, failed);
       !failed && entry != Iterator(); entry.increment(failed))
    if (isScenario(*entry)) files.push_back(entry->path().lexically_relative(folder).string());
  std::sort(files.begin(), files.end());
  return files;
}

}  // namespace

std::optional<File> pageFile(const fs::path& folder, const std::string& name) {
  const auto type = kTypes.find(fs::path(name).extension().string());
  if (type == kTypes.end() || !std::regex_match(name, std::regex("[a-z0-9_.-]+"))) return {};
  std::error_code failed;
  const fs::path file = fs::canonical(folder / name, failed);
  if (failed || file.parent_path() != fs::canonical(folder)) return {};
  return contents(file, type->second);
}

std::vector<std::string> scenarioFiles(const fs::path& folder) {
  return textFiles<fs::recursive_directory_iterator>(folder);
}

std::vector<std::string> savedFiles(const fs::path& folder) {
  std::vector<std::string> names = textFiles<fs::directory_iterator>(folder);
  std::erase_if(names, [](const std::string& name) { return !mayBeSavedAs(name); });
  return names;
}

std::optional<File> textFile(const fs::path& folder, const std::string& path,
                             const std::vector<std::string>& files) {
  if (!std::binary_search(files.begin(), files.end(), path)) return {};
  return contents(folder / path, kTypes.at(".txt"));
}

bool mayBeSavedAs(const std::string& name) {
  return std::regex_match(name, std::regex("[A-Za-z0-9 _-]{1,64}\\.txt"));
}

void save(const fs::path& folder, const std::string& name, const std::string& text) {
  std::string unfinished = folder / ".unfinished-XXXXXX";
  const int file = mkstemp(unfinished.data());
  bool succeeded = file >= 0 && write(file, text.data(), text.size()) == ssize_t(text.size());
  if (file >= 0) succeeded = close(file) == 0 && succeeded;
  if (succeeded && rename(unfinished.c_str(), (folder / name).c_str()) == 0) return;
  const int error = errno;
  unlink(unfinished.c_str());
  throw std::system_error(error, std::generic_category(), "cannot write " + name);
}

}  // namespace sim::serve
