// Where CFPreferences keeps domains. Before iOS 8: in the domain's file, read and written as a
// process synchronises. From iOS 8 on: in cfprefsd, which has a copy of its own from the first
// question about a domain on, writes the file seconds later, or when the Settings app ends, and
// then overwrites whatever others wrote there meanwhile. Leaves out other users, hosts and
// containers, and the merging of a domain with global ones.
#pragma once
#include "sim/core/device.hpp"
#include "sim/foundation/plist_file.hpp"

namespace sim {

class PreferencesDaemon final : public Service {
 public:
  explicit PreferencesDaemon(Device& device) : device_(device) {}

  // A null value removes the key.
  void set(const Process& by, const std::string& domain, const std::string& key, PlistNode value);
  PlistNode get(const Process& by, const std::string& domain, const std::string& key);  // a copy
  void synchronize(const Process& by, const std::string& domain);

  // How often it wrote over what others had written meanwhile.
  std::size_t overwritten() const { return overwritten_; }

  // The daemon is told to end: it writes what it has not written, and forgets everything.
  void restart();
  void processEnded(const Process& process) override;

 private:
  struct Domain {
    PlistNode values;  // a dictionary
    bool changed = false;
  };
  using Changes = std::vector<std::pair<std::string, PlistNode>>;

  bool exists() const;  // on this version
  PlistNode readFile(const std::string& domain) const;
  bool writeFile(const std::string& domain, plist_t values) const;
  Domain& cached(const std::string& domain);
  void flush();

  Device& device_;
  std::map<std::string, Domain> domains_;
  bool flushIsDue_ = false;
  std::size_t overwritten_ = 0;
  std::map<std::pair<std::uint64_t, std::string>, Changes> pending_;  // by process and domain
};

}  // namespace sim
