// Takes the place of what adds methods and the class, to count the library without it.
#include "ui/block_alert.hpp"
#include "ui/block_timer.hpp"
#include "welcome/follow_handler.hpp"

namespace corvalen {
void ui::registerTimerCategory() {}
void ui::registerAlertCategory() {}
void welcome::registerFollowHandler() {}
}  // namespace corvalen
