// NSDictionary and NSMutableDictionary, with texts as keys, in order of insertion. Leaves out keys
// of other classes, and the order in which the platform hands keys out, which nobody may rely on.
#pragma once
#include "sim/core/process.hpp"

namespace sim {

class NSDictionary : public Object {
 public:
  explicit NSDictionary(Process& process) : Object(process) {}
  std::string description() const override { return "<NSDictionary>"; }
  bool equals(const Object& other) const override;

  struct Entry {
    std::string key;
    Ref<Object> value;
  };
  const std::vector<Entry>& entries() const { return entries_; }
  Object* find(const std::string& key) const;       // borrowed; null if it is not there
  void set(const std::string& key, Object* value);  // null removes

 private:
  std::vector<Entry> entries_;
};

class NSMutableDictionary final : public NSDictionary {
 public:
  explicit NSMutableDictionary(Process& process) : NSDictionary(process) {
    onlyOn = process.thread;
  }
  std::string description() const override { return "<NSMutableDictionary>"; }
};

Ref<NSDictionary> makeDictionary(Process& process);

}  // namespace sim
