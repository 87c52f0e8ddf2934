// The files that the server gives and takes: those of the page, scenarios to open, scenarios that
// were saved. No name leads out of the folder it is looked for in. Nothing of a phone; leaves out
// links, and files longer than a request may be.
#pragma once
#include <filesystem>
#include <optional>
#include <string>
#include <vector>

namespace sim::serve {

constexpr std::size_t kLongestText = 256UL * 1024;  // of a file and of a request, in bytes

struct File {
  std::string type;  // for the header Content-Type
  std::string bytes;
};
// Below the folder. Nothing if there is none of this very name, or if it is of no type that a page
// is made of. An empty name of a folder stands for none.
std::optional<File> fileIn(const std::filesystem::path& folder, const std::string& path);
// All *.txt below a folder, as paths from there, sorted.
std::vector<std::string> scenarioFiles(const std::filesystem::path& folder);

// Replaces the whole file or leaves it as it is. The name is of no other folder: that is for the
// caller to see to. Throws std::system_error.
void save(const std::filesystem::path& folder, const std::string& name, const std::string& text);

}  // namespace sim::serve
