// PSSpecifier: one row or group of a page in the Settings app. Leaves out values with titles,
// keyboards, sliders and whatever else no page here has.
#pragma once
#include "sim/foundation/string.hpp"

namespace sim {

// PSCellType, as far as pages here go.
enum class Cell : long { Group = 0, Link = 1, LinkList = 2, ListItem = 3, Switch = 6, Button = 13 };

class PSSpecifier final : public Object {
 public:
  using Object::Object;

  Object* property(const std::string& key) const;  // borrowed; null if there is none
  void setProperty(const std::string& key, Object* value);
  // Its text of that name; empty if there is none.
  std::string text(const std::string& key) const;
  // Whether a finger can do anything with it: it is unless it says that it is not.
  bool enabled() const;

  // What the row asks its target; null if it asks nothing. Both are as the page set them.
  Object* get();
  void set(Object* value);
  void performButton();

  Ref<NSString> name;
  Cell cell = Cell::Group;
  Address target = 0;  // not held
  std::string getter;
  std::string setter;
  std::string buttonAction;
  Class* detail = nullptr;

 private:
  std::map<std::string, Ref<Object>> properties_;
};

Ref<PSSpecifier> makeSpecifier(Process& process, Cell cell, const std::string& name);

}  // namespace sim
