// PSListController: a page in the Settings app. Its rows are what `specifiers` answers, kept in the
// variable _specifiers, which subclasses fill by its place. Leaves out inserting and removing rows,
// search, and pages for the two halves of an iPad.
#pragma once
#include "sim/foundation/array.hpp"
#include "sim/settings/specifier.hpp"
#include "sim/settings/table.hpp"

namespace sim {

class PSListController final : public Object {
 public:
  using Object::Object;
  ~PSListController() override;

  // The list as the page has it, asked for if there is none. Fault if it is none of specifiers.
  std::vector<PSSpecifier*> rows();
  // The same, but the page is asked only if it keeps none yet: so the framework finds a row.
  std::vector<PSSpecifier*> keptRows();
  void reload() { cells_.clear(); }
  void reloadSpecifiers();
  void reloadSpecifier(PSSpecifier* row);
  PSSpecifier* specifierAtIndex(long index);  // borrowed; Fault beyond the end
  long indexForIndexPath(NSIndexPath* path);
  Object* cellForRow(Object* table, NSIndexPath* path);  // borrowed
  void didSelectRow(Object* table, NSIndexPath* path);

  UITableView* table();
  UINavigationItem* navigationItem();

  // What is seen of a row once its cell is drawn.
  struct Shown {
    PSSpecifier* specifier;  // borrowed
    Ref<NSIndexPath> path;   // null of a group
    PSTableCell* cell;       // null of a group
  };
  // Draws what is not drawn yet.
  std::vector<Shown> draw();

  Ref<PSSpecifier> specifier;  // of the row that led here

 private:
  void dropList();

  Ref<UITableView> table_;
  Ref<UINavigationItem> item_;
  std::map<Address, Ref<PSTableCell>> cells_;  // by the specifier
};

}  // namespace sim
