// The simulated classes of SpringBoard's process, and of the add-ons that run in it: a function
// each, for sim/platform/class_list.cpp. Leaves out the classes themselves, which stand in the
// other files of this folder.
#pragma once
#include "sim/core/class_definition.hpp"

namespace sim {

// SpringBoard itself
ClassDefinition defineSpringBoard();
ClassDefinition defineApplicationObjects();
ClassDefinition defineSBApplication();
ClassDefinition defineSBApplicationController();
ClassDefinition defineFBScene();
ClassDefinition defineFBSMutableSceneSettings();
// What the user sees
ClassDefinition defineShown();
ClassDefinition defineSBLockScreenManager();
ClassDefinition defineSBLockScreenViewController();
ClassDefinition defineSBLockScreenScrollView();
ClassDefinition defineSBBacklightController();
ClassDefinition defineSBControlCenterController();
ClassDefinition defineSBIconController();
ClassDefinition defineSBApplicationIcon();
ClassDefinition defineSBAppSliderController();
ClassDefinition defineSBAppSwitcherModel();
ClassDefinition defineSBDisplayItem();
ClassDefinition defineSBAppSuggestionManager();
// Media
ClassDefinition defineSBMediaController();
ClassDefinition defineMPUSystemMediaControlsViewController();
ClassDefinition defineMPUTransportControlsView();
ClassDefinition defineMPUMediaControlsTitlesView();
ClassDefinition defineAVSystemController();
ClassDefinition defineTUCallCenter();
// Add-ons
ClassDefinition defineALApplicationList();
ClassDefinition defineSettingsAppList();  // the same class, in the Settings app
ClassDefinition defineAuxoCollectionView();
ClassDefinition defineAuxoCell();
ClassDefinition defineMPMiniPlayerActionsDelegate();

}  // namespace sim
