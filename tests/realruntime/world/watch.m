// What GNUstep's Foundation is made to do otherwise: the clock is the device's, paths lead into
// the device's folder, property lists are read as the platform reads them, and effects are traced.
#include <string.h>
#include <sys/syscall.h>
#include <sys/time.h>
#include <time.h>
#include <unistd.h>

#import "watch.h"

// ---- The clock. The device's time 0 is Foundation's, so that whole microseconds stay exact.

enum { kReferenceDate = 978307200 };  // in seconds of the host's clock
// A timer is due for GNUstep once its time has passed, not when it has come.
static int64_t past;

int clock_gettime(clockid_t clock, struct timespec* time) {
  if (!device || device->live || clock != CLOCK_REALTIME) return syscall(SYS_clock_gettime, clock, time);
  const int64_t now = device->now + past;
  *time = (struct timespec){kReferenceDate + now / 1000000, now % 1000000 * 1000};
  return 0;
}
int gettimeofday(struct timeval* time, void* zone) {
  struct timespec exact;
  clock_gettime(CLOCK_REALTIME, &exact);
  *time = (struct timeval){exact.tv_sec, exact.tv_nsec / 1000};
  return 0;
}

// ---- Timers

@interface Scheduled : NSObject {  // a timer of the library's, until it is over
 @public
  NSTimer* timer;
  int64_t number;
}
@end
@implementation Scheduled
@end
static NSMutableArray* timers;
static IMP scheduleBefore, fireBefore;
static unsigned fired;

static id schedule(id cls, SEL name, double seconds, id target, SEL action, id info, BOOL repeats) {
  effect(@"+[NSTimer scheduledTimerWithTimeInterval:%g repeats:%s]", seconds,
         repeats ? "YES" : "NO");
  Scheduled* entry = [[Scheduled new] autorelease];
  entry->timer = ((id(*)(id, SEL, double, id, SEL, id, BOOL))scheduleBefore)(
      cls, name, seconds, target, action, info, repeats);
  entry->number = device->timersMade++;
  [entry->timer retain];
  [timers addObject:entry];
  return entry->timer;
}

static void fire(NSTimer* self, SEL name) {
  const int64_t before = past;
  past = 0;
  for (Scheduled* entry in timers) fired += entry->timer == self;
  ((void (*)(id, SEL))fireBefore)(self, name);
  past = before;
}

int64_t nextTimer(int64_t* number) {
  int64_t next = -1;
  for (NSUInteger i = [timers count]; i-- > 0;) {
    Scheduled* entry = [timers objectAtIndex:i];
    if (![entry->timer isValid]) {
      [entry->timer release];
      [timers removeObjectAtIndex:i];
      continue;
    }
    const double seconds = [[entry->timer fireDate] timeIntervalSinceReferenceDate];
    const int64_t due = (int64_t)(seconds * 1e6 + 0.5);
    if (next >= 0 && due > next) continue;
    next = due;
    *number = entry->number;
  }
  return next;
}

// The run loop fires one timer a turn; it may have timers of its own.
void fireNextTimer(void) {
  const unsigned before = fired;
  past = 1;
  for (int turn = 0; turn < 8 && fired == before; ++turn)
    [[NSRunLoop currentRunLoop] limitDateForMode:NSDefaultRunLoopMode];
  past = 0;
}

void libraryWillSend(id receiver, SEL name) {
  if (sel_isEqual(name, @selector(invalidate)) && [receiver isKindOfClass:[NSTimer class]] &&
      [receiver isValid])
    effect(@"-[NSTimer invalidate]");
}

// ---- Files

static NSString* hostPath(NSString* path) {
  const BOOL mapped =
      [path hasPrefix:@"/var/mobile/"] || [path hasPrefix:@"/Library/MobileSubstrate/"];
  return mapped ? [[NSString stringWithUTF8String:device->root] stringByAppendingString:path]
                : path;
}

static IMP readBefore, writeBefore, existsBefore;

// GNUstep reads texts only here; the platform the binary form too.
static id readFile(NSDictionary* self, SEL name, NSString* path) {
  NSData* data = hostPath(path) == path ? nil : [NSData dataWithContentsOfFile:hostPath(path)];
  if (hostPath(path) != path)
    effect(@"-[NSMutableDictionary initWithContentsOfFile:%@]", quoted(path));
  if ([data length] < 6 || memcmp([data bytes], "bplist", 6))
    return ((id(*)(id, SEL, id))readBefore)(self, name, hostPath(path));
  id content = nil;
  @try {
    content = [NSPropertyListSerialization propertyListWithData:data
                                                          options:NSPropertyListImmutable
                                                           format:NULL
                                                            error:NULL];
  } @catch (NSException* unreadable) {
  }
  if ([content isKindOfClass:[NSDictionary class]]) return [self initWithDictionary:content];
  [self release];
  return nil;
}

static BOOL writeFile(id self, SEL name, NSString* path, BOOL atomically) {
  NSString* host = hostPath(path);
  if (host != path) {
    effect(@"-[NSMutableDictionary writeToFile:%@ atomically:%s]", quoted(path),
           atomically ? "YES" : "NO");
    if (device->settingsReadOnly) return NO;
  }
  return ((BOOL(*)(id, SEL, id, BOOL))writeBefore)(self, name, host, atomically);
}

static BOOL fileExists(id self, SEL name, NSString* path) {
  return ((BOOL(*)(id, SEL, id))existsBefore)(self, name, hostPath(path));
}

// ---- The app's bundle: a real one, in the device's folder

static NSBundle* bundle;
static id mainBundle(id self, SEL name) { return bundle; }

static NSBundle* makeBundle(const char* identifier) {
  NSString* path = [NSString stringWithFormat:@"%s/bundles/%s.app", device->root, identifier];
  NSString* resources = [path stringByAppendingPathComponent:@"Resources"];
  [[NSFileManager defaultManager] createDirectoryAtPath:resources
                            withIntermediateDirectories:YES
                                             attributes:nil
                                                  error:NULL];
  NSString* identity = [NSString stringWithUTF8String:identifier];
  [[NSDictionary dictionaryWithObject:identity forKey:@"CFBundleIdentifier"]
      writeToFile:[resources stringByAppendingPathComponent:@"Info-gnustep.plist"]
       atomically:NO];
  return [[NSBundle bundleWithPath:path] retain];
}

void prepareFoundation(void) {
  NSAutoreleasePool* pool = [NSAutoreleasePool new];
  [[NSUserDefaults standardUserDefaults]
      registerDefaults:[NSDictionary dictionaryWithObject:@"YES" forKey:@"GSMacOSXCompatible"]];
  [NSBundle mainBundle];
  [pool drain];
}

void watchFoundation(const char* identifier) {
  timers = [NSMutableArray new];
  bundle = makeBundle(identifier);
  replaceMethod(object_getClass([NSBundle class]), @selector(mainBundle), (IMP)mainBundle, NULL);
  replaceMethod([NSDictionary class], @selector(initWithContentsOfFile:), (IMP)readFile,
                &readBefore);
  replaceMethod([NSDictionary class], @selector(writeToFile:atomically:), (IMP)writeFile,
                &writeBefore);
  replaceMethod([NSFileManager class], @selector(fileExistsAtPath:), (IMP)fileExists,
                &existsBefore);
  replaceMethod(object_getClass([NSTimer class]),
                @selector(scheduledTimerWithTimeInterval:target:selector:userInfo:repeats:),
                (IMP)schedule, &scheduleBefore);
  replaceMethod([NSTimer class], @selector(fire), (IMP)fire, &fireBefore);
}
