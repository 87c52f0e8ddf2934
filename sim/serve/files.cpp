#include "sim/serve/files.hpp"

#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <map>
#include <system_error>

namespace sim::serve {

namespace fs = std::filesystem;

namespace {

const std::map<std::string, std::string> kTypes = {{".html", "text/html; charset=utf-8"},
                                                   {".css", "text/css; charset=utf-8"},
                                                   {".js", "text/javascript; charset=utf-8"},
                                                   {".txt", "text/plain; charset=utf-8"}};

// Whether it is a file, not too long, under this very name: no link leads there, and no "..".
bool isGiven(const fs::path& folder, const std::string& path) {
  std::error_code failed;
  const std::string file = fs::canonical(folder, failed).string() + '/' + path;
  return !failed && fs::canonical(file, failed).string() == file &&
         fs::is_regular_file(file, failed) && fs::file_size(file, failed) <= kLongestText;
}

}  // namespace

std::optional<File> fileIn(const fs::path& folder, const std::string& path) {
  const auto type = kTypes.find(fs::path(path).extension().string());
  if (type == kTypes.end() || !isGiven(folder, path)) return {};
  std::ifstream in(folder / path, std::ios::binary);
  return File{type->second, std::string(std::istreambuf_iterator<char>(in), {})};
}

std::vector<std::string> scenarioFiles(const fs::path& folder) {
  std::vector<std::string> files;
  std::error_code failed;
  const auto options = fs::directory_options::skip_permission_denied;
  for (fs::recursive_directory_iterator entry(folder, options, failed);
       !failed && entry != fs::recursive_directory_iterator(); entry.increment(failed)) {
    const std::string path = entry->path().lexically_relative(folder).string();
    if (entry->path().extension() == ".txt" && isGiven(folder, path)) files.push_back(path);
  }
  std::sort(files.begin(), files.end());
  return files;
}

void save(const fs::path& folder, const std::string& name, const std::string& text) {
  std::string unfinished = folder / ".unfinished-XXXXXX";
  const int descriptor = mkstemp(unfinished.data());
  std::FILE* file = descriptor < 0 ? nullptr : fdopen(descriptor, "wb");
  const bool written = file && fchmod(descriptor, 0644) == 0 &&
                       std::fwrite(text.data(), 1, text.size(), file) == text.size();
  const bool whole = file && std::fclose(file) == 0 && written;
  if (whole && rename(unfinished.c_str(), (folder / name).c_str()) == 0) return;
  const int error = errno;
  unlink(unfinished.c_str());
  throw std::system_error(error, std::generic_category(), "cannot write " + name);
}

}  // namespace sim::serve
