#include "ui/block_alert.hpp"

#include "platform/added_method.hpp"
#include "platform/block.hpp"

namespace corvalen::ui {

using namespace platform;

namespace {

// ---- What is stored with an alert

// Addresses that serve as association keys; only their identity matters.
template <Literal Getter>
inline constexpr char kCallbackKey = 0;
constexpr char kPreviousDelegateKey = 0;

Object previousDelegate(id alert) {
  return view(objc_getAssociatedObject(alert, &kPreviousDelegateKey));
}

// -_checkAlertViewDelegate: makes the alert its own delegate, once, and remembers the one before
// without holding it.
// docs/decisions.md: The previous delegate is not held
void checkDelegate(id self, SEL) {
  const auto alert = view<UIAlertView>(self);
  const Object delegate = alert.delegate();
  if (delegate == alert) return;
  objc_setAssociatedObject(self, &kPreviousDelegateKey, delegate.raw,
                           static_cast<uintptr_t>(Association::assign));
  alert.setDelegate(alert);
}

template <Literal Getter>
Object callbackOf(id alert) {
  return view(objc_getAssociatedObject(alert, &kCallbackKey<Getter>));
}

template <Literal Getter>
BlockPointer callback(id self, SEL) {
  return reinterpret_cast<BlockPointer>(callbackOf<Getter>(self).raw);
}

template <Literal Getter>
void setCallback(id self, SEL name, BlockPointer block) {
  checkDelegate(self, name);
  objc_setAssociatedObject(self, &kCallbackKey<Getter>, reinterpret_cast<id>(block),
                           static_cast<uintptr_t>(Association::copy));
}

// ---- Delegate messages

bool answers(Object delegate, SEL name) {
  return delegate && as<NSObject>(delegate).respondsTo(name);
}

// The callback, then the previous delegate. Held over the callback: it may give the alert another
// one, or let the alert itself go.
template <Literal Getter, class... More>
void tell(id self, SEL name, id alert, More... more) {
  const auto alive = Retained<Object>::retain(view(self));
  const auto block = Retained<Object>::retain(callbackOf<Getter>(alert));
  invokeBlock(block.get(), alert, more...);
  const Object delegate = previousDelegate(self);
  if (answers(delegate, name)) sendNamed(delegate, name, alert, more...);
}

// A message about the alert alone.
template <Literal Getter>
void deliver(id self, SEL name, id alert) {
  tell<Getter>(self, name, alert);
}

// A message about one of the alert's buttons.
template <Literal Getter>
void deliverButton(id self, SEL name, id alert, NSInteger button) {
  tell<Getter>(self, name, alert, button);
}

// The one question among them: the callback's answer, else the previous delegate's, else YES.
BOOL shouldEnableFirstOtherButton(id self, SEL name, id alert) {
  const auto block =
      Retained<Object>::retain(callbackOf<"shouldEnableFirstOtherButtonInOurBlock">(alert));
  if (block) return invokeBlock<BOOL>(block.get(), alert);
  const Object delegate = previousDelegate(self);
  return answers(delegate, name) ? sendNamed<BOOL>(delegate, name, alert) : YES;
}

// ---- Showing

UIAlertView show(ClassObject cls, NSString title, NSString message, NSInteger style,
                 NSString cancelTitle, NSArray otherTitles, Object response) {
  const NSUInteger others = otherTitles.count();
  const NSString first = others ? as<NSString>(otherTitles.objectAtIndex(0)) : NSString{};
  const auto alert = UIAlertView::make(cls, title, message, Object{}, cancelTitle, first);
  if (!alert) return {};  // where UIKit is missing; nothing can be associated with nil
  alert->setAlertViewStyle(style);
  if (others > 1)
    enumerate(otherTitles.subarrayWithRange(1, others - 1),
              [&alert](Object other) { alert->addButton(as<NSString>(other)); });
  if (response)
    setCallback<"responseBlock">(alert.get().raw, selector<"setResponseBlock:">(),
                                 reinterpret_cast<BlockPointer>(response.raw));
  alert->show();
  objc_retain(alert.get().raw);
  return view<UIAlertView>(objc_autorelease(alert.get().raw));
}

// +showWithTitleCVP:message:style:cancelButtonTitle:otherButtonTitles:responseBlock:
id showWithStyle(id self, SEL, id title, id message, NSInteger style, id cancelTitle,
                 id otherTitles, BlockPointer response) {
  return show(view<ClassObject>(self), view<NSString>(title), view<NSString>(message), style,
              view<NSString>(cancelTitle), view<NSArray>(otherTitles),
              view(reinterpret_cast<id>(response)))
      .raw;
}

// docs/decisions.md: Own functions are called directly
// +showWithTitleCVP:message:cancelButtonTitle:otherButtonTitles:responseBlock:
id showWithDefaultStyle(id self, SEL name, id title, id message, id cancelTitle, id otherTitles,
                        BlockPointer response) {
  return showWithStyle(self, name, title, message, kDefaultAlertStyle, cancelTitle, otherTitles,
                       response);
}

// ---- The category. A method that the class has already, by an app or another extension, stays as
// it is: so nothing above goes by a message to what is added here.

// docs/decisions.md: Categories are added at run time
constexpr AddedMethod kClassMethods[] = {
    addedMethod<&showWithStyle,
                "showWithTitleCVP:message:style:cancelButtonTitle:otherButtonTitles:"
                "responseBlock:">(),
    addedMethod<&showWithDefaultStyle,
                "showWithTitleCVP:message:cancelButtonTitle:otherButtonTitles:responseBlock:">(),
};

constexpr AddedMethod kMethods[] = {
    addedMethod<&callback<"responseBlock">, "responseBlock">(),
    addedMethod<&setCallback<"responseBlock">, "setResponseBlock:">(),
    addedMethod<&callback<"willDismissOurBlock">, "willDismissOurBlock">(),
    addedMethod<&setCallback<"willDismissOurBlock">, "setWillDismissOurBlock:">(),
    addedMethod<&callback<"didDismissOurBlock">, "didDismissOurBlock">(),
    addedMethod<&setCallback<"didDismissOurBlock">, "setDidDismissOurBlock:">(),
    addedMethod<&callback<"willPresentOurBlock">, "willPresentOurBlock">(),
    addedMethod<&setCallback<"willPresentOurBlock">, "setWillPresentOurBlock:">(),
    addedMethod<&callback<"didPresentOurBlock">, "didPresentOurBlock">(),
    addedMethod<&setCallback<"didPresentOurBlock">, "setDidPresentOurBlock:">(),
    addedMethod<&callback<"cancelOurBlock">, "cancelOurBlock">(),
    addedMethod<&setCallback<"cancelOurBlock">, "setCancelOurBlock:">(),
    addedMethod<&callback<"shouldEnableFirstOtherButtonInOurBlock">,
                "shouldEnableFirstOtherButtonInOurBlock">(),
    addedMethod<&setCallback<"shouldEnableFirstOtherButtonInOurBlock">,
                "setShouldEnableFirstOtherButtonInOurBlock:">(),
    addedMethod<&checkDelegate, "_checkAlertViewDelegate">(),
    addedMethod<&deliver<"willPresentOurBlock">, "willPresentAlertView:">(),
    addedMethod<&deliver<"didPresentOurBlock">, "didPresentAlertView:">(),
    addedMethod<&deliver<"cancelOurBlock">, "alertViewCancel:">(),
    addedMethod<&deliverButton<"responseBlock">, "alertView:clickedButtonAtIndex:">(),
    addedMethod<&deliverButton<"willDismissOurBlock">, "alertView:willDismissWithButtonIndex:">(),
    addedMethod<&deliverButton<"didDismissOurBlock">, "alertView:didDismissWithButtonIndex:">(),
    addedMethod<&shouldEnableFirstOtherButton, "alertViewShouldEnableFirstOtherButton:">(),
};

constexpr const char* kProperties[] = {
    "responseBlock",
    "willDismissOurBlock",
    "didDismissOurBlock",
    "willPresentOurBlock",
    "didPresentOurBlock",
    "cancelOurBlock",
    "shouldEnableFirstOtherButtonInOurBlock",
};

// The class of our own alerts. Where somebody else's category has the message by which an alert
// reports its buttons, a class below UIAlertView on which it is ours, made at its first use.
// docs/decisions.md: A class below UIAlertView
ClassObject ownAlertClass() {
  const ClassObject cls = UIAlertView::cls();
  const IMP ours = reinterpret_cast<IMP>(&deliverButton<"responseBlock">);
  const SEL report = selector<"alertView:clickedButtonAtIndex:">();
  if (!cls || as<NSObject>(cls).instanceMethodFor(report) == ours) return cls;
  constexpr Literal kName = "CVPAlertView";
  if (const Class fresh = objc_allocateClassPair(cls.cls(), kText<kName>.text, 0)) {
    addMethods<kMethods>(fresh);
    objc_registerClassPair(fresh);
  }
  return classNamed<kName>();
}

}  // namespace

UIAlertView showAlert(NSString title, NSString message, NSString cancelTitle, NSArray otherTitles,
                      Object response) {
  return show(ownAlertClass(), title, message, kDefaultAlertStyle, cancelTitle, otherTitles,
              response);
}

void registerAlertCategory() {
  const Class cls = UIAlertView::cls().cls();
  if (!cls) return;
  addMethods<kClassMethods>(metaclassOf(cls));
  addMethods<kMethods>(cls);
  addCopiedBlockProperties<kProperties>(cls);
}

}  // namespace corvalen::ui
