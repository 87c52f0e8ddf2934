// The Objective-C runtime's own functions, over GCC's libobjc. What that lacks stands here:
// associations, property lists of classes, and counting by C functions.
#include <sys/syscall.h>
#include <unistd.h>

#import "adapter.h"

double platformVersion;

IMP adapterLookup(id receiver, SEL name) {
  libraryWillSend(receiver, name);
  return objc_msg_lookup(receiver, name);
}

PROVIDE(Class, objc_getClass, (const char* name)) {
  return classIsHere(name) ? objc_getClass(name) : Nil;
}
PROVIDE(SEL, sel_registerName, (const char* name)) { return sel_registerName(name); }
PROVIDE(Class, object_getClass, (id object)) { return object ? object_getClass(object) : Nil; }
PROVIDE(BOOL, class_addMethod, (Class cls, SEL name, IMP code, const char* types)) {
  return cls ? class_addMethod(cls, name, code, types) : NO;
}
PROVIDE(Class, objc_allocateClassPair, (Class super, const char* name, size_t extra)) {
  return objc_allocateClassPair(super, name, extra);
}
PROVIDE(void, objc_registerClassPair, (Class cls)) { objc_registerClassPair(cls); }
PROVIDE(void, objc_enumerationMutation, (id collection)) { objc_enumerationMutation(collection); }
PROVIDE(void*, objc_autoreleasePoolPush, (void)) { return [NSAutoreleasePool new]; }
PROVIDE(void, objc_autoreleasePoolPop, (void* pool)) { [(id)pool drain]; }
PROVIDE(id, objc_retain, (id object)) { return [object retain]; }
PROVIDE(void, objc_release, (id object)) { [object release]; }
PROVIDE(id, objc_autorelease, (id object)) { return [object autorelease]; }
PROVIDE(int, pthread_main_np, (void)) { return syscall(SYS_gettid) == getpid(); }

// ---- Properties: libobjc can tell those that were compiled in, and takes no new ones

PROVIDE(BOOL, class_addProperty,
        (Class cls, const char* name, const void* attributes, unsigned count)) {
  static NSMutableSet* added;
  if (!cls || !name || (count && !attributes) || class_getProperty(cls, name)) return NO;
  if (!added) added = [NSMutableSet new];
  NSString* key = [NSString stringWithFormat:@"%p %s", cls, name];
  if ([added containsObject:key]) return NO;
  [added addObject:key];
  return YES;
}

// ---- Associations, by the object's address; a replaced -dealloc lets them go with it

enum { kRetain = 1, kCopy = 3 };  // of the policies, without their atomic bits
typedef struct Association {
  const void* key;
  id value;
  BOOL held;
  struct Association* next;
} Association;

static NSMapTable* associations;  // from an object to its list
static IMP deallocBefore;

static void drop(Association* association) {
  if (association->held) [association->value release];
  free(association);
}

static void deallocWithAssociations(id self, SEL name) {
  Association* list = NSMapGet(associations, self);
  NSMapRemove(associations, self);
  for (Association* next; list; list = next) {
    next = list->next;
    drop(list);
  }
  ((void (*)(id, SEL))deallocBefore)(self, name);
}

// Takes the association out of its list and answers it.
static Association* takeOut(id object, const void* key) {
  Association* head = NSMapGet(associations, object);
  for (Association** place = &head; *place; place = &(*place)->next) {
    if ((*place)->key != key) continue;
    Association* found = *place;
    *place = found->next;
    if (head)
      NSMapInsert(associations, object, head);
    else
      NSMapRemove(associations, object);
    return found;
  }
  return NULL;
}

PROVIDE(void, objc_setAssociatedObject, (id object, const void* key, id value, uintptr_t policy)) {
  if (!object) [NSException raise:@"Association" format:@"with nil"];
  if (!associations) {
    associations =
        NSCreateMapTable(NSNonOwnedPointerMapKeyCallBacks, NSNonOwnedPointerMapValueCallBacks, 8);
    replaceMethod([NSObject class], @selector(dealloc), (IMP)deallocWithAssociations,
                  &deallocBefore);
  }
  Association* before = takeOut(object, key);
  if (value) {
    Association* fresh = malloc(sizeof *fresh);
    const BOOL copied = (policy & kCopy) == kCopy;
    id kept = copied ? [value copy] : (policy & kRetain) ? [value retain] : value;
    *fresh = (Association){key, kept, policy & kRetain, NSMapGet(associations, object)};
    NSMapInsert(associations, object, fresh);
  }
  if (before) drop(before);
}

PROVIDE(id, objc_getAssociatedObject, (id object, const void* key)) {
  if (!associations || !object) return nil;
  for (Association* one = NSMapGet(associations, object); one; one = one->next)
    if (one->key == key) return one->value;
  return nil;
}

// ---- Cydia Substrate, for methods

void replaceMethod(Class cls, SEL name, IMP replacement, IMP* previous) {
  Method method = cls ? class_getInstanceMethod(cls, name) : NULL;
  if (!method) return;
  if (previous) *previous = method_getImplementation(method);
  // An inherited method is overridden, and a class's own replaced.
  if (!class_addMethod(cls, name, replacement, method_getTypeEncoding(method)))
    method_setImplementation(method, replacement);
}

PROVIDE(void, MSHookMessageEx, (Class cls, SEL name, IMP replacement, IMP* previous)) {
  effect(@"MSHookMessageEx(%s, %s)", cls ? class_getName(cls) : "nil", sel_getName(name));
  replaceMethod(cls, name, replacement, previous);
}
