// NSObject: what every object and class answers. Leaves out forwarding, key-value coding and
// observing, performing selectors later, and `description`.
#include "sim/core/class_definition.hpp"
#include "sim/foundation/definitions.hpp"

namespace sim {

namespace {

Owned<Object> alloc(Class& cls) { return {cls.process.allocateInstance(cls)}; }

// +new is alloc and init, each as the class has it.
Owned<Object> makeNew(Class& cls) {
  const Ref<Object> fresh = cls.process.allocateInstance(cls);
  const Value result = cls.process.send(fresh.get(), "init");
  return {Ref<Object>(cls.process.object(result.bits))};
}

// What stands behind the method, as the library can call and compare it.
Pointer instanceMethod(Class& cls, Selector name) {
  Process& process = cls.process;
  Method* method = cls.find(process.selectorName(name.address));
  if (!method) return {};
  const Implementation& found = method->implementation;
  return {found.native ? process.library().expose(found.native, true) : found.library};
}

NativeCode untraced(NativeCode code) {
  code.relay = true;
  return code;
}

}  // namespace

ClassDefinition defineNSObject() {
  auto definition = ClassDefinition::of<Object>("NSObject", "", Home::everywhere());
  definition.classMethod("alloc", &alloc);
  definition.classMethod("new", &makeNew);
  definition.classMethod("instanceMethodForSelector:", &instanceMethod);
  definition.code(detail::methodCode<Object, Object*>("init", [](Object& self) { return &self; }));
  definition.code(untraced(detail::methodCode<Object, void>(
      "dealloc", [](Object& self) { self.process.destroy(self); })));
  definition.code(detail::methodCode<Object, Object*>("retain", [](Object& self) {
    self.libraryRetain();
    return &self;
  }));
  definition.code(
      detail::methodCode<Object, void>("release", [](Object& self) { self.libraryRelease(); }));
  definition.code(detail::methodCode<Object, Object*>("autorelease", [](Object& self) {
    self.process.autorelease(Ref<Object>(&self));
    self.libraryRelease();
    return &self;
  }));
  definition.code(detail::methodCode<Object, bool, Selector>(
      "respondsToSelector:", [](Object& self, Selector name) {
        return self.process.responds(self, self.process.selectorName(name.address));
      }));
  definition.code(detail::methodCode<Object, bool, Class*>(
      "isKindOfClass:", [](Object& self, Class* cls) { return cls && self.isa->inherits(*cls); }));
  definition.code(detail::methodCode<Object, bool, Object*>(
      "isEqual:", [](Object& self, Object* other) { return other && self.equals(*other); }));
  return definition;
}

}  // namespace sim
