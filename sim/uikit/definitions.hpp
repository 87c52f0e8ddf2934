// The simulated classes of UIKit: a function each, for sim/platform/class_list.cpp. Leaves out what
// pages of the Settings app are drawn with, which sim/settings has.
#pragma once
#include "sim/core/class_definition.hpp"

namespace sim {

ClassDefinition defineUIView();
ClassDefinition defineUIApplication();
ClassDefinition defineUIAlertView();
ClassDefinition defineShownAlerts();

}  // namespace sim
