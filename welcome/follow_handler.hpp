// CVPTWHandler: carries out the welcome alert's offer to follow the developer on Twitter. It is the
// delegate of that alert and of its own account choice, and lives as long as one of them or a
// pending callback holds it.
#pragma once
#include "platform/uikit.hpp"

namespace corvalen::welcome {

// Tags by which the handler tells its alerts apart.
inline constexpr NSInteger kWelcomeAlertTag = 1;
inline constexpr NSInteger kAccountChoiceAlertTag = 2;

// A new handler; nothing if its class could not be registered.
platform::Retained<platform::Object> makeFollowHandler();

// Ties a handler's life to that of an alert.
void holdHandler(platform::UIAlertView alert, platform::Object handler);

// Registers the class with the runtime.
void registerFollowHandler();

}  // namespace corvalen::welcome
