// libobjc's C functions. Leaves out what the library does not import: protocols, lists of methods,
// weak references. Types of added methods are checked where they answer an alert.
#include "sim/platform/functions.hpp"

namespace sim {

namespace {

Class* getClass(Process& process, std::string name) { return process.findClass(name); }

Selector registerName(Process& process, std::string name) { return {process.selector(name)}; }

Class* getObjectClass(Process&, Object* object) { return object ? object->isa : nullptr; }

// Methods that the platform declares for whoever implements them: l stands for NSInteger.
const std::map<std::string, std::string> kDeclared = {
    {"alertView:clickedButtonAtIndex:", "v@:@l"},
    {"alertView:willDismissWithButtonIndex:", "v@:@l"},
    {"alertView:didDismissWithButtonIndex:", "v@:@l"},
    {"willPresentAlertView:", "v@:@"},
    {"didPresentAlertView:", "v@:@"},
    {"alertViewCancel:", "v@:@"},
    {"alertViewShouldEnableFirstOtherButton:", "B@:@"},
};

// Types that differ from the platform's would be read from registers that nobody has set.
void checkTypes(const std::string& selector, const Signature& given, unsigned pointerSize) {
  const auto declared = kDeclared.find(selector);
  if (declared == kDeclared.end()) return;
  std::string encoding = declared->second;
  for (char& code : encoding)
    if (code == 'l') code = pointerSize == 8 ? 'q' : 'i';
  const Signature wanted = Signature::fromEncoding(encoding);
  if (given.result != wanted.result || given.arguments != wanted.arguments)
    throw Fault(selector + " is added with other types than the platform declares");
}

bool addMethod(Process& process, Class* cls, Selector name, Pointer code, std::string types) {
  const std::string& selector = process.selectorName(name.address);
  if (!cls || cls->own(selector)) return false;
  if (code.address == 0) throw Fault("class_addMethod of no implementation");
  const Signature signature = Signature::fromEncoding(types);
  checkTypes(selector, signature, process.library().pointerSize());
  cls->methods[selector] = {selector, signature, {nullptr, code.address}, {}, types};
  return true;
}

// The attributes as the runtime would show them: "T@?,C,N".
bool addProperty(Process& process, Class* cls, std::string name, Pointer attributes,
                 unsigned count) {
  if (!cls || cls->properties.contains(name)) return false;
  Library& library = process.library();
  std::string shown;
  for (unsigned i = 0; i < count; ++i) {
    const Address pair = attributes.address + Address{2} * i * library.pointerSize();
    shown += (i ? "," : "") + library.readText(library.readPointer(pair)) +
             library.readText(library.readPointer(pair + library.pointerSize()));
  }
  cls->properties[name] = shown;
  return true;
}

// Without the encoding, which is another on each width.
std::string describeAddMethod(const Invocation& invocation) {
  const auto* cls = dynamic_cast<const Class*>(invocation.object(0));
  return std::string("class_addMethod(") + (cls && cls->meta ? "+" : "") +
         (cls ? cls->name : "nil") + ", " +
         invocation.process.selectorName(invocation.arguments[1].bits) + ")";
}

NativeCode described(NativeCode code, Describe describe) {
  code.describe = std::move(describe);
  return code;
}

Class* allocateClassPair(Process& process, Class* superclass, std::string name, unsigned long) {
  if (!superclass || process.findClass(name)) return nullptr;
  return &process.createClass(name, superclass);
}

void registerClassPair(Process& process, Class* cls) {
  if (!cls) throw Fault("objc_registerClassPair of no class");
  process.registerClass(*cls);
}

// A handle that nobody looks into: it says how far behind an object's start the variable is.
constexpr Address kFirstVariable = 0x41000000;

Pointer instanceVariable(Process& process, Class* cls, std::string name) {
  const auto index = cls ? cls->variableIndex(name) : std::nullopt;
  return {index ? kFirstVariable + *index * process.library().pointerSize() : 0};
}

long variableOffset(Process&, Pointer variable) {
  if (!variable.address) throw Fault("ivar_getOffset of no variable");
  return static_cast<long>(variable.address - kFirstVariable);
}

void setAssociated(Process&, Object* object, Pointer key, Object* value, unsigned long policy) {
  if (!object) {
    if (value) throw Fault("objc_setAssociatedObject on nil");
    return;
  }
  object->associate(key.address, value, policy);
}

// What an atomic association holds comes retained and autoreleased: it outlives a change.
Object* getAssociated(Process& process, Object* object, Pointer key) {
  Object* value = object ? object->associated(key.address) : nullptr;
  if (value && object->associatedAtomically(key.address)) process.autorelease(Ref<Object>(value));
  return value;
}

void enumerationMutation(Process&, Object* collection) {
  throw Fault((collection ? collection->description() : "nil") +
              " was mutated while being enumerated");
}

Pointer poolPush(Process& process) { return {process.pushPool()}; }
void poolPop(Process& process, Pointer pool) { process.popPool(pool.address); }

Object* retain(Process&, Object* object) {
  if (object) object->libraryRetain();
  return object;
}
void release(Process&, Object* object) {
  if (object) object->libraryRelease();
}
Object* autorelease(Process& process, Object* object) {
  if (!object) return nullptr;
  process.autorelease(Ref<Object>(object));
  object->libraryRelease();
  return object;
}

}  // namespace

Functions runtimeFunctions() {
  return {
      bindFunction("objc_getClass", &getClass),
      bindFunction("sel_registerName", &registerName),
      bindFunction("object_getClass", &getObjectClass),
      described(bindFunction("class_addMethod", &addMethod), describeAddMethod),
      bindFunction("class_addProperty", &addProperty),
      bindFunction("objc_allocateClassPair", &allocateClassPair),
      bindFunction("objc_registerClassPair", &registerClassPair),
      bindFunction("class_getInstanceVariable", &instanceVariable),
      bindFunction("ivar_getOffset", &variableOffset),
      bindFunction("objc_setAssociatedObject", &setAssociated),
      bindFunction("objc_getAssociatedObject", &getAssociated),
      bindFunction("objc_enumerationMutation", &enumerationMutation),
      bindFunction("objc_autoreleasePoolPush", &poolPush),
      bindFunction("objc_autoreleasePoolPop", &poolPop),
      bindFunction("objc_retain", &retain),
      bindFunction("objc_release", &release),
      bindFunction("objc_autorelease", &autorelease),
  };
}

}  // namespace sim
