#include "sim/settings/list_controller.hpp"

#include "sim/foundation/number.hpp"
#include "sim/settings/definitions.hpp"
#include "sim/settings/navigation.hpp"
#include "sim/settings/plain_page.hpp"

namespace sim {

namespace {

// The place of _specifiers in a page.
Address listPlace(const Object& page) {
  const auto index = page.isa->variableIndex("_specifiers");
  return page.address + *index * page.process.library().pointerSize();
}

std::vector<PSSpecifier*> specifiersIn(const NSArray& list) {
  std::vector<PSSpecifier*> all;
  for (std::size_t i = 0; i < list.size(); ++i) {
    all.push_back(dynamic_cast<PSSpecifier*>(list.at(i)));
    if (!all.back()) throw Fault("a row of a page that is no specifier");
  }
  return all;
}

}  // namespace

PSListController::~PSListController() = default;

std::vector<PSSpecifier*> PSListController::rows() {
  Object* answer = process.object(process.send(this, "specifiers").bits);
  if (!answer) return {};
  auto* list = dynamic_cast<NSArray*>(answer);
  if (!list) throw Fault("a page whose specifiers are no array");
  // The framework goes by the variable: a page that leaves it empty has no rows.
  const Address kept = process.library().readPointer(listPlace(*this));
  if (kept == 0) return {};
  if (kept != list->address) throw Fault("a page that keeps other specifiers than it answers");
  return specifiersIn(*list);
}

std::vector<PSSpecifier*> PSListController::keptRows() {
  const Address kept = process.library().readPointer(listPlace(*this));
  const auto* list = dynamic_cast<NSArray*>(process.object(kept));
  return list ? specifiersIn(*list) : rows();
}

void PSListController::dropList() {
  const Address kept = process.library().readPointer(listPlace(*this));
  process.library().writePointer(listPlace(*this), 0);
  if (Object* list = process.object(kept)) list->libraryRelease();
}

void PSListController::reloadSpecifiers() {
  dropList();
  reload();
  rows();
}

void PSListController::reloadSpecifier(PSSpecifier* row) {
  if (row) cells_.erase(row->address);
}

PSSpecifier* PSListController::specifierAtIndex(long index) {
  const auto all = keptRows();
  if (index < 0 || static_cast<std::size_t>(index) >= all.size())
    throw Fault("a specifier beyond the page's end");
  return all[static_cast<std::size_t>(index)];
}

long PSListController::indexForIndexPath(NSIndexPath* path) {
  if (!path) throw Fault("indexForIndexPath: nil");
  const auto all = keptRows();
  // Rows before the first group are in one without a title.
  const bool headless = !all.empty() && all[0]->cell != Cell::Group;
  if (headless && path->section == 0) return static_cast<long>(path->row);
  std::size_t groups = headless ? 1 : 0;
  for (std::size_t i = 0; i < all.size(); ++i)
    if (all[i]->cell == Cell::Group && groups++ == path->section)
      return static_cast<long>(i + 1 + path->row);
  throw Fault("a section beyond the page's end");
}

// As the framework has it: a row shows what its getter answers, but for links, list items and
// buttons; an icon from its properties.
Object* PSListController::cellForRow(Object*, NSIndexPath* path) {
  PSSpecifier* row = specifierAtIndex(indexForIndexPath(path));
  Ref<PSTableCell>& cell = cells_[row->address];
  if (cell) return cell.get();
  cell = process.make<PSTableCell>("PSTableCell");
  cell->hasIcon = row->property("iconImage") != nullptr;
  const bool asks =
      row->cell != Cell::Link && row->cell != Cell::ListItem && row->cell != Cell::Button;
  Object* value = asks ? row->get() : nullptr;
  if (const auto* number = dynamic_cast<NSNumber*>(value))
    cell->value = number->boolValue() ? "YES" : "NO";
  else
    cell->value = textOf(dynamic_cast<NSString*>(value));
  return cell.get();
}

void PSListController::didSelectRow(Object*, NSIndexPath* path) {
  const Ref<PSSpecifier> row(specifierAtIndex(indexForIndexPath(path)));
  if (row->cell == Cell::Button) row->performButton();
  if (row->cell == Cell::Link || row->cell == Cell::LinkList) pushPage(process, *row);
}

UITableView* PSListController::table() {
  if (!table_) table_ = process.make<UITableView>("UITableView");
  return table_.get();
}

UINavigationItem* PSListController::navigationItem() {
  if (!item_) item_ = process.make<UINavigationItem>("UINavigationItem");
  return item_.get();
}

std::vector<PSListController::Shown> PSListController::draw() {
  std::vector<Shown> shown;
  std::size_t section = 0;
  std::size_t row = 0;
  for (PSSpecifier* one : rows()) {
    if (one->cell == Cell::Group) {
      section += shown.empty() ? 0 : 1;
      row = 0;
      shown.push_back({one, {}, nullptr});
      continue;
    }
    const auto path = process.make<NSIndexPath>("NSIndexPath", section, row++);
    const Value cell =
        process.send(this, "tableView:cellForRowAtIndexPath:",
                     {Value::object(table()->address), Value::object(path->address)});
    auto* drawn = dynamic_cast<PSTableCell*>(process.object(cell.bits));
    if (!drawn) throw Fault("a row without a cell");
    shown.push_back({one, path, drawn});
  }
  return shown;
}

namespace {

void viewDidLoad(PSListController& self) { self.rows(); }

// The last word of a page: what it keeps goes with it, once.
void dealloc(PSListController& self) {
  const Address kept = self.process.library().readPointer(listPlace(self));
  if (Object* list = self.process.object(kept)) list->libraryRelease();
  self.process.destroy(self);
}

}  // namespace

ClassDefinition definePSListController() {
  auto definition = ClassDefinition::of<PSListController>("PSListController", "NSObject",
                                                          Home::app("com.apple.Preferences"));
  definition.variables({"_specifiers"});
  const auto add = [&](NativeCode code) { definition.code(std::move(code)); };
  add(detail::methodCode<PSListController, Object*>("specifiers", plainSpecifiers));
  add(detail::methodCode<PSListController, Object*, PSSpecifier*>("readPreferenceValue:",
                                                                  readStoredValue));
  add(detail::methodCode<PSListController, void, Object*, PSSpecifier*>(
      "setPreferenceValue:specifier:", setStoredValue));
  add(detail::methodCode<PSListController, PSSpecifier*>(
      "specifier", [](PSListController& self) { return self.specifier.get(); }));
  add(detail::methodCode<PSListController, void, PSSpecifier*>(
      "setSpecifier:", [](PSListController& self, PSSpecifier* specifier) {
        self.specifier = Ref<PSSpecifier>(specifier);
      }));
  for (const char* name : {"setRootController:", "setParentController:"})
    add(detail::methodCode<PSListController, void, Object*>(name,
                                                            [](PSListController&, Object*) {}));
  add(detail::methodCode<PSListController, void>("viewDidLoad", viewDidLoad));
  for (const char* name : {"viewWillAppear:", "viewWillDisappear:"})
    add(detail::methodCode<PSListController, void, bool>(name, [](PSListController&, bool) {}));
  add(detail::methodCode<PSListController, bool>("canBeShownFromSuspendedState",
                                                 [](PSListController&) { return true; }));
  add(detail::methodCode<PSListController, void>("dealloc", dealloc));
  definition.method("reload", &PSListController::reload);
  definition.method("reloadSpecifiers", &PSListController::reloadSpecifiers);
  definition.method("reloadSpecifier:", &PSListController::reloadSpecifier);
  definition.method("specifierAtIndex:", &PSListController::specifierAtIndex);
  definition.method("indexForIndexPath:", &PSListController::indexForIndexPath);
  definition.method("tableView:cellForRowAtIndexPath:", &PSListController::cellForRow);
  definition.method("tableView:didSelectRowAtIndexPath:", &PSListController::didSelectRow);
  definition.method("table", &PSListController::table);
  definition.method("navigationItem", &PSListController::navigationItem);
  return definition;
}

}  // namespace sim
