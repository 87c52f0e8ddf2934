// Constant strings, blocks, notification centers, arrays: what CoreFoundation, the blocks runtime
// and the system's libraries give the library beside messages.
#include <dlfcn.h>
#include <string.h>

#import "adapter.h"

// The class object itself lies where the platform has a variable.
#define CLASS_AS_VARIABLE(variable, cls) \
  __asm__(".globl _" #variable "\n.set _" #variable ", _OBJC_Class_" #cls "\n")

// ---- Constant strings, as platform/constant_string.hpp lays them out

@interface CVConstantString : NSString {
  unsigned long flags;
  const char* characters;
  unsigned long length;
}
@end
@implementation CVConstantString
- (NSUInteger)length { return length; }
- (unichar)characterAtIndex:(NSUInteger)index {
  if (index >= length) [NSException raise:NSRangeException format:@"index %lu", index];
  return (unsigned char)characters[index];
}
- (id)retain { return self; }
- (oneway void)release {}
- (id)autorelease { return self; }
- (id)copyWithZone:(NSZone*)zone { return self; }
@end
CLASS_AS_VARIABLE(__CFConstantStringClassReference, CVConstantString);

// ---- Blocks: BlocksRuntime copies them, these are their classes

extern void* _Block_copy(const void*);
extern void _Block_release(const void*);
typedef struct {
  Class isa;
  int flags, reserved;
  void (*invoke)(id, BOOL, id, id);
} Block;

@interface NSBlock : NSObject
@end
@interface CVMallocBlock : NSBlock
@end
@interface CVStackBlock : NSBlock
@end
@interface CVGlobalBlock : NSBlock
@end

id copyBlock(id block) {
  Block* copy = _Block_copy(block);
  // BlocksRuntime has put an array of its own there, which is no class.
  if ((id)copy != block) copy->isa = [CVMallocBlock class];
  return (id)copy;
}

void callBlock(id block, BOOL first) { ((Block*)block)->invoke(block, first, nil, nil); }

@implementation NSBlock
- (id)copy { return copyBlock(self); }
- (id)copyWithZone:(NSZone*)zone { return copyBlock(self); }
- (id)retain { return self; }
- (oneway void)release {}
- (id)autorelease { return self; }
- (NSString*)traceDescription { return @"<block>"; }
@end
@implementation CVMallocBlock
- (id)retain { return _Block_copy(self); }  // counts
- (oneway void)release { _Block_release(self); }
- (id)autorelease {
  [NSAutoreleasePool addObject:self];
  return self;
}
- (NSUInteger)retainCount { return ((Block*)self)->flags & 0xffff; }
@end
@implementation CVStackBlock
@end
@implementation CVGlobalBlock
@end
CLASS_AS_VARIABLE(_NSConcreteStackBlock, CVStackBlock);
CLASS_AS_VARIABLE(_NSConcreteGlobalBlock, CVGlobalBlock);

// ---- libdispatch, libnotify, dyld, the C library

static NSNotificationCenter* darwinCenter(void) {
  static NSNotificationCenter* center;
  if (!center)
    center = device->live ? [[NSDistributedNotificationCenter defaultCenter] retain]
                          : [NSNotificationCenter new];
  return center;
}

char mainQueue[64] PLATFORM(_dispatch_main_q);

PROVIDE(void, dispatch_async, (void* queue, id block)) {
  if (queue != mainQueue || !block) [NSException raise:@"Dispatch" format:@"an unknown queue"];
  enqueue(kBlock, processNumber, "", copyBlock(block));
}
PROVIDE(uint32_t, notify_post, (const char* name)) {
  effect(@"notify_post(%@)", quoted([NSString stringWithUTF8String:name]));
  if (device->live)
    [darwinCenter() postNotificationName:[NSString stringWithUTF8String:name] object:nil];
  else
    enqueue(kPost, 0, name, NULL);
  return 0;
}
PROVIDE(void*, dlopen, (const char* path, int mode)) {
  return strncmp(path, "/System/Library/", 16) ? NULL : (void*)path;
}
PROVIDE(void*, dlsym, (void* handle, const char* symbol)) { return exportedSymbol(symbol); }
PROVIDE(int, system, (const char* command)) {
  effect(@"system(%@)", quoted([NSString stringWithUTF8String:command]));
  return 0;
}

// ---- Notification centers

typedef void (*Callback)(id center, void* observer, NSString* name, id object, id userInfo);
@interface CVObserver : NSObject {
 @public
  Callback callback;
  id center;
  void* observer;
}
@end
@implementation CVObserver
- (void)received:(NSNotification*)notification {
  callback(center, observer, [notification name], [notification object], [notification userInfo]);
}
@end

void deliverDarwin(NSString* name) { [darwinCenter() postNotificationName:name object:nil]; }

PROVIDE(id, CFNotificationCenterGetDarwinNotifyCenter, (void)) { return darwinCenter(); }
PROVIDE(id, CFNotificationCenterGetLocalCenter, (void)) {
  return [NSNotificationCenter defaultCenter];
}
PROVIDE(void, CFNotificationCenterAddObserver,
        (id center, void* observer, Callback callback, NSString* name, id object, long behavior)) {
  effect(@"CFNotificationCenterAddObserver(%s, %@)", center == darwinCenter() ? "darwin" : "local",
         quoted(name));
  CVObserver* wrapper = [CVObserver new];  // for ever: the library never removes one
  wrapper->callback = callback;
  wrapper->center = center;
  wrapper->observer = observer;
  [center addObserver:wrapper selector:@selector(received:) name:name object:object];
}

// ---- Arrays that hold their elements without a reference

@interface CVUnretainedArray : NSMutableArray {
  id* items;
  NSUInteger count;
}
@end
@implementation CVUnretainedArray  // what every array must have; the rest is NSMutableArray's
- (NSUInteger)count { return count; }
- (id)objectAtIndex:(NSUInteger)index {
  if (index >= count) [NSException raise:NSRangeException format:@"index %lu", index];
  return items[index];
}
- (void)insertObject:(id)object atIndex:(NSUInteger)index {
  items = realloc(items, (count + 1) * sizeof(id));
  memmove(items + index + 1, items + index, (count++ - index) * sizeof(id));
  items[index] = object;
}
- (void)addObject:(id)object { [self insertObject:object atIndex:count]; }
- (void)removeObjectAtIndex:(NSUInteger)index {
  memmove(items + index, items + index + 1, (--count - index) * sizeof(id));
}
- (void)removeLastObject { --count; }
- (void)replaceObjectAtIndex:(NSUInteger)index withObject:(id)object { items[index] = object; }
- (void)dealloc {
  free(items);
  [super dealloc];
}
@end

PROVIDE(id, CFArrayCreateMutable, (id allocator, long capacity, const void* callbacks)) {
  return callbacks ? [NSMutableArray new] : [CVUnretainedArray new];
}
PROVIDE(void, CFRelease, (id object)) {
  if (!object) [NSException raise:@"CFRelease" format:@"of NULL"];
  [object release];
}

// ---- Cydia Substrate, for the one function that is replaced

extern BOOL sendMediaCommand(unsigned command, id options);
static BOOL (*mediaCommand)(unsigned, id) = sendMediaCommand;
BOOL mediaCommandEntry(unsigned command, id options) { return mediaCommand(command, options); }

PROVIDE(void, MSHookFunction, (void* function, void* replacement, void** previous)) {
  effect(@"MSHookFunction(MRMediaRemoteSendCommand)");
  if (function != mediaCommandEntry) [NSException raise:@"Hook" format:@"an unknown function"];
  *previous = mediaCommand;
  mediaCommand = replacement;
}
