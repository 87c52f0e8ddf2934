// The library's categories of NSTimer and UIAlertView with blocks that clang has made: they are on
// the stack when they are handed over, and long gone from there when they are called.
#include <dlfcn.h>
#include <stdio.h>
#include <string.h>

#include "made.h"
#import "../world/watch.h"
#import "../world/world.h"

@interface NSTimer (Library)
+ (id)scheduledTimerWithTimeInterval:(double)seconds block:(id)block repeats:(BOOL)repeats;
+ (id)timerWithTimeInterval:(double)seconds block:(id)block repeats:(BOOL)repeats;
@end
@interface NSObject (Library)
+ (id)showWithTitleCVP:(id)title
                message:(id)message
      cancelButtonTitle:(id)cancel
      otherButtonTitles:(id)others
          responseBlock:(id)block;
@end

static NSTimer* timer;
static void repeating(void* block) {
  timer = [NSTimer scheduledTimerWithTimeInterval:1 block:block repeats:YES];
}
static void once(void* block) {
  timer = [NSTimer scheduledTimerWithTimeInterval:1 block:block repeats:NO];
}
static void unscheduled(void* block) {
  timer = [[NSTimer timerWithTimeInterval:1 block:block repeats:YES] retain];
}
static void endTimer(void) { [timer invalidate]; }
static void alert(void* block) {
  [NSClassFromString(@"UIAlertView") showWithTitleCVP:@"title"
                                              message:@"message"
                                    cancelButtonTitle:@"cancel"
                                    otherButtonTitles:[NSArray arrayWithObjects:@"a", @"b", nil]
                                        responseBlock:block];
}

static void spoilStack(void) {
  volatile char used[4096];
  memset((void*)used, 0xee, sizeof used);
}
// One turn after the other, each with what the last has left behind gone.
static void advance(int seconds) {
  int64_t number;
  for (const int64_t end = device->now + seconds * 1000000; device->now < end;) {
    NSAutoreleasePool* pool = [NSAutoreleasePool new];
    device->now += 1000000;
    if (nextTimer(&number) >= 0) fireNextTimer();
    [pool drain];
  }
}

static int failures;
static void check(const char* what, long is, long expected) {
  if (is == expected) return;
  printf("%s: %ld, not %ld\n", what, is, expected);
  ++failures;
}

extern void nameProcess(const char* name);
extern const char* processIdentifier;
int testBlocks(const char* library) {
  NSAutoreleasePool* pool = [NSAutoreleasePool new];
  processIdentifier = "com.apple.springboard";
  nameProcess(processIdentifier);
  isSpringBoard = YES;
  platformVersion = device->version;
  watchFoundation(processIdentifier);
  if (!dlopen(library, RTLD_NOW | RTLD_LOCAL)) puts(dlerror());
  int calls = 0;
  withCounter(&calls, repeating);
  spoilStack();
  advance(3);
  check("a repeating block in 3 s", calls, 3);
  [timer invalidate];
  advance(3);
  check("after the timer was invalidated", calls, 3);
  withCounter(&calls, once);
  spoilStack();
  advance(3);
  check("a block that is called once", calls, 4);
  withCounter(&calls, unscheduled);
  spoilStack();
  advance(3);
  check("a timer that is not scheduled", calls, 4);
  [timer fire];
  check("when it is fired", calls, 5);
  [timer invalidate];
  [timer release];
  int after = 0;
  withEnding(&after, endTimer, repeating);
  spoilStack();
  advance(3);
  check("a block that ends its own timer", after, 1);
  long answer = -2;
  withAnswer(&answer, alert);
  spoilStack();
  [topAlert() press:2];
  check("an alert's answer", answer, 2);
  [pool drain];
  return failures;
}
