// The simulated classes of the Settings app: a function each, for sim/platform/class_list.cpp.
// Leaves out the classes themselves, which stand in the other files of this folder.
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
ClassDefinition defineSettingsNavigation();

}  // namespace sim
