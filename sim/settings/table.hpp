// What a page is drawn with: UITableView, its cells, the navigation bar and the search bar, as far
// as pages in the Settings app touch them. Leaves out geometry and drawing.
#pragma once
#include "sim/foundation/string.hpp"

namespace sim {

class NSIndexPath final : public Object {
 public:
  NSIndexPath(Process& process, std::size_t section, std::size_t row)
      : Object(process), section(section), row(row) {}
  const std::size_t section;
  const std::size_t row;
};

class PSTableCell final : public Object {
 public:
  using Object::Object;
  bool checked() const { return accessory_ == 3; }
  void setAccessoryType(long accessory);

  std::string value;  // drawn at the right
  bool hasIcon = false;

 private:
  long accessory_ = 0;
};

class UIBarButtonItem final : public Object {
 public:
  using Object::Object;
  void tap();

  Ref<NSString> title;
  Address target = 0;  // not held
  std::string action;
};

class UINavigationItem final : public Object {
 public:
  using Object::Object;
  Ref<UIBarButtonItem> right;
};

class UISearchBar final : public Object {
 public:
  using Object::Object;
  // The user types: what stood there is replaced.
  void type(const std::string& text);
  void tapSearch();

  Address delegate = 0;  // not held
};

class UITableView final : public Object {
 public:
  using Object::Object;
  UISearchBar* searchBar() const { return dynamic_cast<UISearchBar*>(header.get()); }
  Ref<Object> header;
  std::vector<std::pair<std::size_t, std::size_t>> selected;  // rows that stay highlighted
};

}  // namespace sim
