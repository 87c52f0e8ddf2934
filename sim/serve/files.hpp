// The files that the server gives and takes: those of the page, scenarios to open, scenarios that
// were saved. No name leads out of the folder it is looked for in. Nothing of a phone; leaves out
// links, and folders within the page's and the saved ones.
#pragma once
#include <filesystem>
#include <optional>
#include <string>
#include <vector>

namespace sim::serve {

constexpr std::size_t kLongestText = 256UL * 1024;  // of a scenario and of a request, in bytes

struct File {
  std::string type;  // for the header Content-Type
  std::string bytes;
};
// Nothing if the folder does not hold it, or if it is of no type that a page is made of.
std::optional<File> pageFile(const std::filesystem::path& folder, const std::string& name);

// All *.txt below a folder, as paths from there, sorted. An empty name of a folder stands for none.
std::vector<std::string> scenarioFiles(const std::filesystem::path& folder);
// Those that stand in the folder itself and could have been saved.
std::vector<std::string> savedFiles(const std::filesystem::path& folder);
// Nothing if it is not among the `files` of the folder.
std::optional<File> textFile(const std::filesystem::path& folder, const std::string& path,
                             const std::vector<std::string>& files);

// Letters, digits, blank, _ and -, up to 64 of them, and ".txt".
bool mayBeSavedAs(const std::string& name);
// Replaces the whole file or leaves it as it is. Throws std::system_error.
void save(const std::filesystem::path& folder, const std::string& name, const std::string& text);

}  // namespace sim::serve
