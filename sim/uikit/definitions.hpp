// The simulated classes of UIKit.
#pragma once
#include "sim/core/class_definition.hpp"

namespace sim {

ClassDefinition defineUIView();
ClassDefinition defineUIApplication();
ClassDefinition defineUIAlertView();
ClassDefinition defineShownAlerts();

}  // namespace sim
