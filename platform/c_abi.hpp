// The platform's C functions and variables, under their real names and signatures. Stands in for
// the vendor's headers of libobjc, libSystem and CoreFoundation, and for Substrate's; leaves out
// everything that the library does not call.
//
// This header is the seam: on the phone the system provides every symbol below, off the phone the
// simulated platform does, at link time. Each declaration carries the symbol's assembler name as
// the phone's linker spells it (with the leading underscore), so that on the host `dlsym` or
// `system` mean the simulated device's and never the host C library's.
// docs/decisions.md: The seam is at link time
#pragma once
#include "platform/types.hpp"

#define PLATFORM_SYMBOL(name) __asm("_" #name)

extern "C" {

// ---- Objective-C runtime (libobjc) --------------------------------------------------------------

// The class of that name, or null. Borrowed; classes live for ever.
Class objc_getClass(const char* name) PLATFORM_SYMBOL(objc_getClass);

// The unique selector of that name, registered if new. Never null.
SEL sel_registerName(const char* name) PLATFORM_SYMBOL(sel_registerName);

// Sends a message. Cast to the method's exact prototype (platform/message.hpp does); a null
// receiver answers zero.
void objc_msgSend() PLATFORM_SYMBOL(objc_msgSend);

// An object's class; a class's metaclass, which holds the class methods. Null for null.
Class object_getClass(id object) PLATFORM_SYMBOL(object_getClass);

// Adds an instance method; `types` is its encoding, copied unchecked. NO if the class is null or
// has the selector itself; an inherited method is overridden.
BOOL class_addMethod(Class cls, SEL name, IMP implementation, const char* types)
    PLATFORM_SYMBOL(class_addMethod);

// Declares a property; NO if the class is null or has one of that name. Names and values are
// copied.
struct objc_property_attribute_t {
  const char* name;
  const char* value;
};
BOOL class_addProperty(Class cls, const char* name, const objc_property_attribute_t* attributes,
                       unsigned int count) PLATFORM_SYMBOL(class_addProperty);

// A new class, not usable before objc_registerClassPair; null if the name is taken.
Class objc_allocateClassPair(Class superclass, const char* name, size_t extraBytes)
    PLATFORM_SYMBOL(objc_allocateClassPair);
void objc_registerClassPair(Class cls) PLATFORM_SYMBOL(objc_registerClassPair);

// An instance variable by its name, searched up the chain; null if there is none. Its place is so
// many bytes behind the object's start.
struct objc_ivar;
objc_ivar* class_getInstanceVariable(Class cls, const char* name)
    PLATFORM_SYMBOL(class_getInstanceVariable);
ptrdiff_t ivar_getOffset(objc_ivar* variable) PLATFORM_SYMBOL(ivar_getOffset);

// Associates `value` with `object` under `key` (compared by address), by one of the policies of
// platform/object.hpp. A null value removes the association.
void objc_setAssociatedObject(id object, const void* key, id value, uintptr_t policy)
    PLATFORM_SYMBOL(objc_setAssociatedObject);
// The associated value, or null. Borrowed.
id objc_getAssociatedObject(id object, const void* key) PLATFORM_SYMBOL(objc_getAssociatedObject);

// Called when a collection changed while it was enumerated; ends the process.
void objc_enumerationMutation(id collection) PLATFORM_SYMBOL(objc_enumerationMutation);

void* objc_autoreleasePoolPush(void) PLATFORM_SYMBOL(objc_autoreleasePoolPush);
void objc_autoreleasePoolPop(void* pool) PLATFORM_SYMBOL(objc_autoreleasePoolPop);

// Reference counting; all three accept null. objc_retain and objc_autorelease return `object`.
id objc_retain(id object) PLATFORM_SYMBOL(objc_retain);
void objc_release(id object) PLATFORM_SYMBOL(objc_release);
id objc_autorelease(id object) PLATFORM_SYMBOL(objc_autorelease);

// ---- Blocks (libSystem) -------------------------------------------------------------------------

extern void* _NSConcreteStackBlock[] PLATFORM_SYMBOL(_NSConcreteStackBlock);
extern void* _NSConcreteGlobalBlock[] PLATFORM_SYMBOL(_NSConcreteGlobalBlock);

// ---- libdispatch, libnotify, dyld, the C library (libSystem) ------------------------------------

// The main queue is this variable itself: pass its address.
struct dispatch_queue_s;
extern dispatch_queue_s _dispatch_main_q PLATFORM_SYMBOL(_dispatch_main_q);
// Copies `block` and runs it later on the queue's thread.
void dispatch_async(dispatch_queue_s* queue, id block) PLATFORM_SYMBOL(dispatch_async);

// 1 on the process's main thread, else 0.
int pthread_main_np(void) PLATFORM_SYMBOL(pthread_main_np);

// Posts a Darwin notification to every process; 0 is success. Never delivers inside the call.
uint32_t notify_post(const char* name) PLATFORM_SYMBOL(notify_post);

// Loads a library, or finds it loaded; null if it is not there.
void* dlopen(const char* path, int mode) PLATFORM_SYMBOL(dlopen);
// The address of an exported symbol (spelled without underscore), or null. Keeps the Thumb bit.
void* dlsym(void* handle, const char* symbol) PLATFORM_SYMBOL(dlsym);

// Runs a shell command and waits for it.
int system(const char* command) PLATFORM_SYMBOL(system);

// ---- CoreFoundation -----------------------------------------------------------------------------

// The platform's version: 847.20 for iOS 7.0 up to 1280.30 for iOS 9.3.
extern const double kCFCoreFoundationVersionNumber PLATFORM_SYMBOL(kCFCoreFoundationVersionNumber);

// What the class word of a constant string points at (platform/constant_string.hpp).
extern int __CFConstantStringClassReference[] PLATFORM_SYMBOL(__CFConstantStringClassReference);

using CFNotificationCallback = void (*)(CFNotificationCenterRef center, void* observer,
                                        CFStringRef name, const void* object, CFTypeRef userInfo);
CFNotificationCenterRef CFNotificationCenterGetDarwinNotifyCenter(void)
    PLATFORM_SYMBOL(CFNotificationCenterGetDarwinNotifyCenter);
CFNotificationCenterRef CFNotificationCenterGetLocalCenter(void)
    PLATFORM_SYMBOL(CFNotificationCenterGetLocalCenter);
void CFNotificationCenterAddObserver(CFNotificationCenterRef center, const void* observer,
                                     CFNotificationCallback callback, CFStringRef name,
                                     const void* object, CFIndex suspensionBehavior)
    PLATFORM_SYMBOL(CFNotificationCenterAddObserver);

// A mutable array, owned by the caller. Null callbacks neither retain nor release the elements.
id CFArrayCreateMutable(CFTypeRef allocator, CFIndex capacity, const void* callbacks)
    PLATFORM_SYMBOL(CFArrayCreateMutable);
// Sets a value of the domain `application`, for the current user on any host; null removes it.
void CFPreferencesSetAppValue(CFStringRef key, CFTypeRef value, CFStringRef application)
    PLATFORM_SYMBOL(CFPreferencesSetAppValue);
// Sends what was set to where the domain is kept. True says nothing about the domain's file.
Boolean CFPreferencesAppSynchronize(CFStringRef application)
    PLATFORM_SYMBOL(CFPreferencesAppSynchronize);
// Releases a CoreFoundation object that is not null.
void CFRelease(CFTypeRef object) PLATFORM_SYMBOL(CFRelease);

// ---- Cydia Substrate ----------------------------------------------------------------------------

// Replaces a method and stores what was there before in `*previous`, before the replacement goes
// live. With a null class or a method found nowhere it does nothing, and `*previous` stays as is.
// An inherited method is given to the class itself; `*previous` then finds the superclass's at each
// call.
void MSHookMessageEx(Class cls, SEL name, IMP replacement, IMP* previous)
    PLATFORM_SYMBOL(MSHookMessageEx);
// The same for a C function, which must not be null.
void MSHookFunction(void* function, void* replacement, void** previous)
    PLATFORM_SYMBOL(MSHookFunction);
}

namespace platform {
// dlopen's lazy mode.
inline constexpr int kLoadLazily = 1;
// CFNotificationSuspensionBehaviorDeliverImmediately.
inline constexpr CFIndex kDeliverImmediately = 4;
}  // namespace platform
