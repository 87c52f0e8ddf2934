#include "sim/inject/fault.hpp"

#include <fmt/format.h>

#include "sim/explore/invariants.hpp"

namespace sim::inject {

std::string InjectedFault::name() const {
  switch (kind) {
    case FaultKind::Nothing:
      return target + " fails";
    case FaultKind::Another:
      return target + " answers another object";
    case FaultKind::LateTimers:
      return fmt::format("timers are {} ms late", number);
    case FaultKind::Doubled:
      return fmt::format("notifications arrive {} times", number);
    case FaultKind::LateNotices:
      return fmt::format("notifications arrive {} ms late", number);
    case FaultKind::LostNotices:
      return "notifications are lost";
    case FaultKind::AlertGoes: {
      static const char* const kWays[] = {"cancels", "dismisses", "removes"};
      return fmt::format("the system {} every alert", kWays[number]);
    }
    case FaultKind::Death:
      return fmt::format("{} dies at step {} of the queue", target, number);
    case FaultKind::CutSettings:
      return fmt::format("the settings file ends after {} bytes", number);
  }
  return {};
}

namespace {

struct Excuse {
  const char* target;  // of calls that fail, with * as wildcards
  const char* rule;
};

namespace rule = explore::rule;

constexpr Excuse kExcuses[] = {
    // A process that cannot find out which one it is takes itself for an ordinary app.
    {"*NSBundle*", rule::kKnownPosts},
    // Where a view could not be made, nothing can be shown in it.
    {"-[MPUMediaControlsTitlesView initWithMediaControlsStyle:*", rule::kPassedOnOnce},
    // The greeting's marker cannot be made, written, read or seen.
    {"objc_getClass(\"NSNumber\")", rule::kOneGreeting},
    {"+[NSNumber numberWithBool:YES]", rule::kOneGreeting},
    {"-[NSMutableDictionary writeToFile:*", rule::kOneGreeting},
    {"*objectForKeyedSubscript:\"feo63OPBmERAd2000UpdRdCAND\"]", rule::kOneGreeting},
    // Who is greeted again has all settings written again, before a late reload has brought the
    // answer to the first greeting into memory.
    {"*objectForKeyedSubscript:\"feo63OPBmERAd2000UpdRdCAND\"]", rule::kSettingsKept},
    // A file that cannot be read counts as none, and is replaced by the defaults.
    {"objc_getClass(\"NSMutableDictionary\")", rule::kOneGreeting},
    {"+[NSMutableDictionary alloc]", rule::kOneGreeting},
    {"objc_getClass(\"NSDictionary\")", rule::kOneGreeting},
    {"+[NSDictionary dictionaryWithObjectsAndKeys:*", rule::kOneGreeting},
    {"-[NSDictionary mutableCopy]", rule::kOneGreeting},
    {"-[NSMutableDictionary initWithContentsOfFile:*", rule::kOneGreeting},
    {"-[NSMutableDictionary initWithContentsOfFile:*", rule::kSettingsKept},
    // A table of the system's that gets no cell from the system's own page ends its process.
    {"*tableView:* cellForRowAtIndexPath:*", rule::kNoCrash},
    {"*instanceMethodForSelector:tableView:cellForRowAtIndexPath:]", rule::kNoCrash},
    // Settings that deny what they hold are told to cfprefsd without it.
    {"-[NSMutableDictionary objectForKey:*", rule::kPageKept},
    // The file's path cannot be made.
    {"objc_getClass(\"NSString\")", rule::kOneGreeting},
    {"+[NSString stringWithFormat:*", rule::kOneGreeting},
};

}  // namespace

std::set<std::string> excusedRules(const std::vector<InjectedFault>& faults) {
  std::set<std::string> rules;
  for (const InjectedFault& fault : faults)
    for (const Excuse& excuse : kExcuses)
      if (fault.kind == FaultKind::Nothing && scenario::matches(excuse.target, fault.target))
        rules.insert(excuse.rule);
  return rules;
}

std::string names(const std::vector<InjectedFault>& faults) {
  std::string all;
  for (const InjectedFault& fault : faults) all += (all.empty() ? "" : ", and ") + fault.name();
  return all.empty() ? "nothing goes wrong" : all;
}

}  // namespace sim::inject
