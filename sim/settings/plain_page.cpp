#include "sim/settings/plain_page.hpp"

#include "sim/foundation/dictionary.hpp"
#include "sim/foundation/plist_file.hpp"
#include "sim/foundation/property_list.hpp"
#include "sim/settings/preferences_daemon.hpp"

namespace sim {

namespace {

const std::map<std::string, Cell> kCells = {
    {"PSGroupCell", Cell::Group},       {"PSLinkCell", Cell::Link},
    {"PSLinkListCell", Cell::LinkList}, {"PSSwitchCell", Cell::Switch},
    {"PSButtonCell", Cell::Button},
};

// Every key of the item is a property of the row.
Ref<PSSpecifier> rowOf(PSListController& page, const NSDictionary& item) {
  const auto text = [&](const char* key) {
    return textOf(dynamic_cast<NSString*>(item.find(key)));
  };
  const auto cell = kCells.find(text("cell"));
  auto row =
      makeSpecifier(page.process, cell == kCells.end() ? Cell::Group : cell->second, text("label"));
  for (const auto& entry : item.entries()) row->setProperty(entry.key, entry.value.get());
  row->target = page.address;
  row->getter = "readPreferenceValue:";
  row->setter = "setPreferenceValue:specifier:";
  return row;
}

}  // namespace

Object* plainSpecifiers(PSListController& page) {
  Process& process = page.process;
  const Address place =
      page.address + *page.isa->variableIndex("_specifiers") * process.library().pointerSize();
  if (Object* kept = process.object(process.library().readPointer(place))) return kept;
  auto list = process.make<NSMutableArray>("NSMutableArray");
  const auto root = readPropertyListFile(process.device.state.settingsEntry);
  plist_t items = root ? plist_dict_get_item(root.get(), "items") : nullptr;
  for (plist_t item : items ? elementsOf(items) : std::vector<plist_t>()) {
    const Ref<Object> object = fromPropertyListNode(process, item);
    if (const auto* row = dynamic_cast<NSDictionary*>(object.get()))
      list->add(rowOf(page, *row).get());
  }
  list->libraryRetain();  // the page's own, released as a subclass's would be
  process.library().writePointer(place, list->address);
  return list.get();
}

Object* readStoredValue(PSListController& page, PSSpecifier* row) {
  Process& process = page.process;
  const PlistNode stored = process.device.service<PreferencesDaemon>().get(
      process, row->text("defaults"), row->text("key"));
  if (!stored) return row->property("default");
  return process.autorelease(fromPropertyListNode(process, stored.get())).get();
}

void setStoredValue(PSListController& page, Object* value, PSSpecifier* row) {
  Process& process = page.process;
  auto& daemon = process.device.service<PreferencesDaemon>();
  if (!value) return;
  daemon.set(process, row->text("defaults"), row->text("key"), toPropertyListNode(*value));
  daemon.synchronize(process, row->text("defaults"));
  const std::string notification = row->text("PostNotification");
  if (!notification.empty()) process.device.postDarwin(notification);
}

}  // namespace sim
