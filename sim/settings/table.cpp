#include "sim/settings/table.hpp"

#include "sim/settings/definitions.hpp"

namespace sim {

namespace {

const Home kHome = Home::app("com.apple.Preferences");

}  // namespace

void PSTableCell::setAccessoryType(long accessory) {
  if (accessory < 0 || accessory > 4) throw Fault("an accessory that there is not");
  accessory_ = accessory;
}

void UIBarButtonItem::tap() {
  if (Object* told = process.object(target)) process.send(told, action, {Value::object(address)});
}

void UISearchBar::type(const std::string& text) {
  Object* told = process.object(delegate);
  if (!told || !process.responds(*told, "searchBar:textDidChange:")) return;
  const auto typed = makeString(process, text);
  process.send(told,
               "searchBar:textDidChange:", {Value::object(address), Value::object(typed->address)});
}

void UISearchBar::tapSearch() {
  Object* told = process.object(delegate);
  if (told && process.responds(*told, "searchBarSearchButtonClicked:"))
    process.send(told, "searchBarSearchButtonClicked:", {Value::object(address)});
}

ClassDefinition defineNSIndexPath() {
  return ClassDefinition::of<NSIndexPath>("NSIndexPath", "NSObject", kHome).mainThreadOnly(false);
}

ClassDefinition definePSTableCell() {
  auto definition = ClassDefinition::of<PSTableCell>("PSTableCell", "UIView", kHome);
  definition.method("setAccessoryType:", &PSTableCell::setAccessoryType);
  return definition;
}

ClassDefinition defineUIBarButtonItem() {
  auto definition = ClassDefinition::of<UIBarButtonItem>("UIBarButtonItem", "NSObject", kHome);
  definition.code(detail::methodCode<UIBarButtonItem, Object*, NSString*, long, Object*, Selector>(
      "initWithTitle:style:target:action:",
      [](UIBarButtonItem& self, NSString* title, long, Object* target, Selector action) {
        self.title = Ref<NSString>(title);
        self.target = target ? target->address : 0;
        self.action = self.process.selectorName(action.address);
        return static_cast<Object*>(&self);
      }));
  return definition;
}

ClassDefinition defineUINavigationItem() {
  auto definition = ClassDefinition::of<UINavigationItem>("UINavigationItem", "NSObject", kHome);
  definition.code(detail::methodCode<UINavigationItem, void, UIBarButtonItem*>(
      "setRightBarButtonItem:", [](UINavigationItem& self, UIBarButtonItem* item) {
        self.right = Ref<UIBarButtonItem>(item);
      }));
  return definition;
}

ClassDefinition defineUISearchBar() {
  auto definition = ClassDefinition::of<UISearchBar>("UISearchBar", "UIView", kHome);
  const auto add = [&](NativeCode code) { definition.code(std::move(code)); };
  add(detail::methodCode<UISearchBar, void, Object*>(
      "setDelegate:", [](UISearchBar& self, Object* listener) {
        self.delegate = listener ? listener->address : 0;
      }));
  add(detail::methodCode<UISearchBar, void>("sizeToFit", [](UISearchBar&) {}));
  add(detail::methodCode<UISearchBar, bool>("resignFirstResponder",
                                            [](UISearchBar&) { return true; }));
  return definition;
}

ClassDefinition defineUITableView() {
  auto definition = ClassDefinition::of<UITableView>("UITableView", "UIView", kHome);
  definition.code(detail::methodCode<UITableView, void, Object*>(
      "setTableHeaderView:",
      [](UITableView& self, Object* view) { self.header = Ref<Object>(view); }));
  definition.code(detail::methodCode<UITableView, void, NSIndexPath*, bool>(
      "deselectRowAtIndexPath:animated:", [](UITableView& self, NSIndexPath* at, bool) {
        if (at) std::erase(self.selected, std::pair(at->section, at->row));
      }));
  return definition;
}

ClassDefinition defineUIImage() {
  return ClassDefinition::of<Object>("UIImage", "NSObject", kHome).mainThreadOnly(false);
}

}  // namespace sim
