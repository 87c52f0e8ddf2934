// The device's file system, in memory. Stands in for the few files that the product and the system
// exchange; leaves out owners, modes, links, and folders but for one in a file's place: every
// folder of a file that is written is there.
#pragma once
#include <cstdint>
#include <map>
#include <memory>
#include <set>
#include <string>
#include <vector>

namespace sim {

class Files {
 public:
  // The bytes of a file; null if there is none. Borrowed, until the file changes.
  const std::string* read(const std::string& path) const;
  // Puts a file there, as a whole. False if a folder is in its place.
  bool write(const std::string& path, std::string bytes);
  void remove(const std::string& path);  // a file; nothing if there is none

  void makeFolder(const std::string& path) { folders_.insert(path); }
  bool isFolder(const std::string& path) const { return folders_.contains(path); }
  bool exists(const std::string& path) const { return read(path) || isFolder(path); }
  std::vector<std::string> all() const;  // every file's path

  // Counts the changes of any file.
  std::uint64_t changes() const { return changes_; }
  // What somebody made of a file's bytes and need not make again while they are the same; empty
  // after a change. The file must be there.
  std::shared_ptr<const void>& derived(const std::string& path) const;

 private:
  struct File {
    std::string bytes;
    mutable std::shared_ptr<const void> derived;
  };
  std::map<std::string, File> files_;
  std::set<std::string> folders_;
  std::uint64_t changes_ = 0;
};

}  // namespace sim
