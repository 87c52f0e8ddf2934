// NSArray and NSMutableArray. CoreFoundation's arrays are the same objects; made with null
// callbacks they hold their elements without a reference. Leaves out sorting, inserting, and
// enumerating without a buffer: elements are handed out in batches, never all at once.
#pragma once
#include <optional>

#include "sim/core/process.hpp"

namespace sim {

class NSArray : public Object {
 public:
  explicit NSArray(Process& process, bool retaining = true)
      : Object(process), retaining_(retaining) {}
  std::string description() const override { return "<NSArray>"; }
  bool equals(const Object& other) const override;

  void add(Object* element);
  // Every element equal to `element`; by identity where elements are not retained.
  void remove(Object* element);
  std::size_t size() const { return elements_.size(); }
  // Borrowed. Fault beyond the end, or if an unretained element was freed.
  Object* at(std::size_t index) const;
  bool contains(const Object* wanted) const;

  // Fast enumeration, through the library's memory. The batch is what the caller has room for.
  unsigned long enumerate(Pointer state, Pointer buffer, unsigned long count);

 private:
  struct Element {
    Address address;
    Ref<Object> held;
  };
  bool retaining_;
  std::vector<Element> elements_;
  std::uint64_t mutations_ = 1;
  Address mutationsCell_ = 0;  // the library reads the count here
};

class NSMutableArray final : public NSArray {
 public:
  explicit NSMutableArray(Process& process, bool retaining = true) : NSArray(process, retaining) {
    onlyOn = process.thread;
  }
};

Ref<NSArray> makeArray(Process& process, const std::vector<Ref<Object>>& elements);

}  // namespace sim
