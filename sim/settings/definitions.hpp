// The simulated classes of the Settings app.
#pragma once
#include "sim/core/class_definition.hpp"

namespace sim {

ClassDefinition definePSSpecifier();
ClassDefinition definePSListController();
ClassDefinition definePSTableCell();
ClassDefinition defineUITableView();
ClassDefinition defineUINavigationItem();
ClassDefinition defineUIBarButtonItem();
ClassDefinition defineUISearchBar();
ClassDefinition defineNSIndexPath();
ClassDefinition defineUIImage();
ClassDefinition defineSettingsAppList();
ClassDefinition defineSettingsNavigation();

}  // namespace sim
