#include "sim/platform/app_category.hpp"

#include "sim/core/describe.hpp"
#include "sim/core/device.hpp"
#include "sim/foundation/string.hpp"
#include "sim/foundation/timer.hpp"
#include "sim/uikit/alert_view.hpp"

namespace sim {

namespace {

using Kinds = KindList;

void add(Class& cls, const std::string& selector, Kind result, const Kinds& arguments, Native run) {
  auto code = std::make_shared<NativeCode>();
  code->name = selector;
  code->signature = {result, arguments, false};
  code->relay = true;
  code->run = [run = std::move(run)](Invocation& call) {
    call.process.device.effect(call.process, "category " + described(call));
    return run(call);
  };
  cls.methods[selector] = {selector, code->signature, {code, 0, nullptr}};
}

// ---- UIAlertView

const std::vector<std::string> kAlertEvents = {
    "willPresentAlertView:", "didPresentAlertView:", "alertViewCancel:"};
const std::vector<std::string> kButtonEvents = {
    "alertView:clickedButtonAtIndex:", "alertView:willDismissWithButtonIndex:",
    "alertView:didDismissWithButtonIndex:"};
const std::string kQuestion = "alertViewShouldEnableFirstOtherButton:";
// The app keeps nothing under these names.
const std::vector<std::string> kGetters = {"responseBlock",
                                           "willDismissOurBlock",
                                           "didDismissOurBlock",
                                           "willPresentOurBlock",
                                           "didPresentOurBlock",
                                           "cancelOurBlock",
                                           "shouldEnableFirstOtherButtonInOurBlock"};
const std::string kShow =
    "showWithTitleCVP:message:cancelButtonTitle:otherButtonTitles:responseBlock:";
const std::string kShowWithStyle =
    "showWithTitleCVP:message:style:cancelButtonTitle:otherButtonTitles:responseBlock:";

std::string setterOf(std::string getter) {
  getter[0] = static_cast<char>(std::toupper(static_cast<unsigned char>(getter[0])));
  return "set" + getter + ":";
}

Value nothing(Invocation&) { return Value::nil(); }

// The app's way of showing an alert: it is its own delegate.
Value showOwn(Invocation& call) {
  Process& process = call.process;
  const auto alert = process.make<UIAlertView>("UIAlertView");
  alert->setTexts(dynamic_cast<NSString*>(call.object(0)), dynamic_cast<NSString*>(call.object(1)),
                  makeString(process, "OK").get());
  process.send(alert.get(), "setDelegate:", {Value::object(alert->address)});
  process.send(alert.get(), "show");
  process.autorelease(Ref<Object>(alert.get()));
  return Value::object(alert->address);
}

void addToAlerts(Class& cls) {
  const Kind o = Kind::Object;
  const Kind index = Kind::Long;
  add(*cls.isa, kShow, o, {o, o, o, o, o}, showOwn);
  add(*cls.isa, kShowWithStyle, o, {o, o, index, o, o, o}, showOwn);
  for (const std::string& getter : kGetters) {
    add(cls, getter, o, {}, nothing);
    add(cls, setterOf(getter), Kind::Void, {o}, nothing);
  }
  add(cls, "_checkAlertViewDelegate", Kind::Void, {}, nothing);
  for (const std::string& event : kAlertEvents) add(cls, event, Kind::Void, {o}, nothing);
  for (const std::string& event : kButtonEvents) add(cls, event, Kind::Void, {o, index}, nothing);
  add(cls, kQuestion, Kind::Bool, {o}, [](Invocation&) { return Value::boolean(false); });
}

// ---- NSTimer: what they take for a block is the object that is told.

Ref<NSTimer> timerFor(Invocation& call) {
  return call.process.make<NSTimer>("NSTimer", call.arguments[0].asReal(), call.object(1),
                                    "appTimerFired:", nullptr, call.arguments[2].asBool());
}

Value scheduleOwn(Invocation& call) {
  const auto timer = timerFor(call);
  timer->schedule();
  call.process.autorelease(Ref<Object>(timer.get()));
  return Value::object(timer->address);
}

Value makeOwn(Invocation& call) {
  const auto timer = timerFor(call);
  call.process.autorelease(Ref<Object>(timer.get()));
  return Value::object(timer->address);
}

void addToTimers(Class& cls) {
  const Kinds arguments = {Kind::Double, Kind::Object, Kind::Bool};
  add(*cls.isa, "scheduledTimerWithTimeInterval:block:repeats:", Kind::Object, arguments,
      scheduleOwn);
  add(*cls.isa, "timerWithTimeInterval:block:repeats:", Kind::Object, arguments, makeOwn);
  add(*cls.isa, "appTimerFired:", Kind::Void, {Kind::Object}, nothing);
}

}  // namespace

void addAppCategories(Process& process) {
  Class* alerts = process.findClass("UIAlertView");
  Class* timers = process.findClass("NSTimer");
  if (alerts && process.categories.contains(kAlertCategory)) addToAlerts(*alerts);
  if (timers && process.categories.contains(kTimerCategory)) addToTimers(*timers);
}

void useAlertCategory(Process& app) {
  Class* cls = app.findClass("UIAlertView");
  if (!cls) return;
  const Value title = Value::object(app.autorelease(makeString(app, "App"))->address);
  const Value shown =
      app.send(cls, kShow, {title, title, Value::nil(), Value::nil(), Value::nil()});
  Object* alert = app.object(shown.bits);
  const Value self = Value::object(alert->address);
  for (const std::string& getter : kGetters) {
    app.send(alert, setterOf(getter), {title});
    app.send(alert, getter);
  }
  app.send(alert, "_checkAlertViewDelegate");
  app.send(alert, kQuestion, {self});
  app.send(alert, "alertViewCancel:", {self});
  dynamic_cast<UIAlertView&>(*alert).press(0);
  const Value other = app.send(
      cls, kShowWithStyle,
      {title, title, Value::integer(Kind::Long, 0), Value::nil(), Value::nil(), Value::nil()});
  dynamic_cast<UIAlertView&>(*app.object(other.bits)).press(0);
}

void useTimerCategory(Process& app) {
  Class* cls = app.findClass("NSTimer");
  if (!cls) return;
  const std::vector<Value> arguments = {Value::real(1), Value::object(cls->address),
                                        Value::boolean(false)};
  app.send(cls, "scheduledTimerWithTimeInterval:block:repeats:", arguments);
  const Value own = app.send(cls, "timerWithTimeInterval:block:repeats:", arguments);
  app.send(app.object(own.bits), "fire");
}

}  // namespace sim
