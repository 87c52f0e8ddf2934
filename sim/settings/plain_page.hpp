// What a page without code does: its rows come from a property list, its values go through
// CFPreferences. Stands in for the framework's own readers and writers; pages with code put theirs
// in their place. Leaves out kinds of rows but groups, links, switches and AppList's.
#pragma once
#include "sim/settings/list_controller.hpp"

namespace sim {

// The list made from the items of the page's property list, at its first need. Borrowed.
Object* plainSpecifiers(PSListController& page);
// The stored value of the row's key in its domain, else its default. Borrowed; may be null.
Object* readStoredValue(PSListController& page, PSSpecifier* row);
// Sets that value, then posts the row's notification.
void setStoredValue(PSListController& page, Object* value, PSSpecifier* row);

}  // namespace sim
