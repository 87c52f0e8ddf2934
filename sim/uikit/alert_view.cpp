#include "sim/uikit/alert_view.hpp"

#include <fmt/format.h>

#include "sim/core/device.hpp"
#include "sim/uikit/definitions.hpp"

namespace sim {

namespace {

// The system holds what is shown.
class ShownAlerts final : public Object {
 public:
  using Object::Object;
  std::vector<Ref<UIAlertView>> stack;
};

ShownAlerts& shown(Process& process) { return process.shared<ShownAlerts>("_UIShownAlerts"); }

constexpr double kWeakDelegates = 1240.1;  // from this version on the delegate is a weak reference

}  // namespace

UIAlertView* topAlert(Process& process) {
  const auto& stack = shown(process).stack;
  return stack.empty() ? nullptr : stack.back().get();
}

std::vector<UIAlertView*> shownAlerts(Process& process) {
  std::vector<UIAlertView*> all;
  for (const auto& alert : shown(process).stack) all.push_back(alert.get());
  return all;
}

long UIAlertView::addButton(NSString* title) {
  buttons_.emplace_back(title);
  return static_cast<long>(buttons_.size()) - 1;
}

NSString* UIAlertView::buttonTitle(long index) const {
  if (index < 0 || static_cast<std::size_t>(index) >= buttons_.size())
    throw Fault(fmt::format("-[UIAlertView buttonTitleAtIndex:{}] beyond the buttons", index));
  return buttons_[static_cast<std::size_t>(index)].get();
}

void UIAlertView::setTexts(NSString* title, NSString* message, NSString* cancelTitle) {
  title_ = Ref<NSString>(title);
  message_ = Ref<NSString>(message);
  if (cancelTitle) cancelIndex_ = addButton(cancelTitle);
}

void UIAlertView::setDelegate(Object* delegate) { delegate_ = delegate ? delegate->address : 0; }

// Not held: on older versions one that is gone is a fault when it is used, later ones forget it.
Object* UIAlertView::delegate() const {
  if (process.device.state.version < kWeakDelegates) return process.object(delegate_);
  try {
    return process.object(delegate_);
  } catch (const Fault&) {
    return nullptr;
  }
}

void UIAlertView::tellDelegate(const std::string& selector, std::vector<Value> more) {
  Object* listener = delegate();
  if (!listener || !process.responds(*listener, selector)) return;
  const Ref<Object> alive(listener);
  more.insert(more.begin(), Value::object(address));
  process.send(listener, selector, std::move(more));
}

void UIAlertView::show() {
  tellDelegate("willPresentAlertView:", {});
  shown(process).stack.emplace_back(this);
  tellDelegate("didPresentAlertView:", {});
}

void UIAlertView::press(long button) {
  const Ref<Object> alive(this);
  const Value index = Value::integer(Kind::Long, button);
  tellDelegate("alertView:clickedButtonAtIndex:", {index});
  tellDelegate("alertView:willDismissWithButtonIndex:", {index});
  std::erase_if(shown(process).stack, [this](const auto& alert) { return alert.get() == this; });
  tellDelegate("alertView:didDismissWithButtonIndex:", {index});
}

void UIAlertView::dismissBySystem(Dismissal how) {
  const Ref<Object> alive(this);
  const Value index = Value::integer(Kind::Long, cancelIndex_);
  const bool tells = how != Dismissal::Vanished;
  if (how == Dismissal::Cancelled) {
    const std::string cancel = "alertViewCancel:";
    Object* listener = delegate();
    if (listener && process.responds(*listener, cancel))
      tellDelegate(cancel, {});
    else
      tellDelegate("alertView:clickedButtonAtIndex:", {index});
  }
  if (tells) tellDelegate("alertView:willDismissWithButtonIndex:", {index});
  std::erase_if(shown(process).stack, [this](const auto& alert) { return alert.get() == this; });
  if (tells) tellDelegate("alertView:didDismissWithButtonIndex:", {index});
}

std::string UIAlertView::contents() const {
  const auto text = [](const Ref<NSString>& string) {
    return string ? string->description() : std::string("nil");
  };
  std::string titles;
  for (const auto& button : buttons_) titles += (titles.empty() ? "" : ", ") + text(button);
  return fmt::format("{} {} [{}] tag {}", text(title_), text(message_), titles, tag_);
}

namespace {

Value initWithTitle(Invocation& invocation) {
  auto& self = dynamic_cast<UIAlertView&>(*invocation.self);
  const auto text = [&](std::size_t index) {
    return Passing<NSString*>::from(invocation.process, invocation.arguments[index]);
  };
  self.setTexts(text(0), text(1), text(3));
  self.setDelegate(invocation.object(2));
  for (Object* other = invocation.object(4); other; other = invocation.nextVariadicObject())
    self.addButton(dynamic_cast<NSString*>(other));
  return Value::object(self.address);
}

std::string describeShow(const Invocation& invocation) {
  return "-[UIAlertView show] " + dynamic_cast<UIAlertView&>(*invocation.self).contents();
}

}  // namespace

ClassDefinition defineUIAlertView() {
  auto definition = ClassDefinition::of<UIAlertView>("UIAlertView", "UIView", Home::everywhere());
  definition.mainThreadOnly();
  definition.partOf(Framework::UIKit);
  definition.code({"initWithTitle:message:delegate:cancelButtonTitle:otherButtonTitles:",
                   {Kind::Object, std::vector<Kind>(5, Kind::Object), true},
                   initWithTitle});
  definition.method("addButtonWithTitle:", &UIAlertView::addButton);
  definition.method("buttonTitleAtIndex:", &UIAlertView::buttonTitle);
  definition.method("cancelButtonIndex", &UIAlertView::cancelButtonIndex);
  definition.method("tag", &UIAlertView::tag);
  definition.method("setTag:", &UIAlertView::setTag);
  definition.method("setAlertViewStyle:", &UIAlertView::setAlertViewStyle);
  definition.method("delegate", &UIAlertView::delegate);
  definition.method("setDelegate:", &UIAlertView::setDelegate);
  definition.method("show", &UIAlertView::show).effect(describeShow);
  return definition;
}

ClassDefinition defineShownAlerts() {
  return ClassDefinition::of<ShownAlerts>("_UIShownAlerts", "NSObject", Home::everywhere());
}

}  // namespace sim
