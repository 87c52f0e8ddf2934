// The platform's C interface (platform/c_abi.hpp) over GNUstep Base and GCC's libobjc: what the
// files of the adapter share with the world, the classes of SpringBoard and the apps.
#import <Foundation/Foundation.h>
#import <objc/message.h>
#import <objc/runtime.h>

#include "../device.h"

// The phone's linker puts an underscore before every name, so that none is the C library's.
#define PLATFORM(name) __asm__("_" #name)
// The definition of one of the platform's functions.
#define PROVIDE(result, name, arguments)           \
  result platform_##name arguments PLATFORM(name); \
  result platform_##name arguments

extern double platformVersion PLATFORM(kCFCoreFoundationVersionNumber);

// ---- The trace
// A line of the trace, behind time and process.
void effect(NSString* format, ...);
// The call of a method, by its own types: put CALL(arguments) first in the method.
void traceCall(id self, SEL name, ...);
#define CALL(...) traceCall(self, _cmd, ##__VA_ARGS__)
// The beginning of a class without variables of its own.
#define CLASS(name, super) \
  @interface name : super  \
  @end                     \
  @implementation name
NSString* quoted(NSString* text);
@interface NSObject (Traced)    // neither is there by default
- (NSString*)traceDescription;  // in place of <Class>
- (NSString*)traceOwner;        // the app that it belongs to
@end

// ---- The world's side
BOOL classIsHere(const char* name);           // in this process
void* exportedSymbol(const char* name);       // of a framework; null if there is none
void libraryWillSend(id receiver, SEL name);  // before each message of the library's
void replaceMethod(Class cls, SEL name, IMP replacement, IMP* previous);
id copyBlock(id block);                // the caller's
void callBlock(id block, BOOL first);  // with arguments (first, nil, nil)
void deliverDarwin(NSString* name);    // to this process's observers
extern int processNumber;
extern BOOL isSpringBoard;  // this process
