// A process of the device: SpringBoard or an app. It loads the library, and does what it is told
// through its socket: a command of the scenario language, or a step of the device's queue.
#include <string.h>
#include <sys/socket.h>
#include <unistd.h>

#import "process.h"
#import "watch.h"
#import "world.h"

Device* device;
int processNumber;
BOOL isSpringBoard;
static int channel;
const char *processIdentifier, *libraryPath;
static char missing[kList], addOns[kList];  // as they were when the process started

// ---- Which classes are here

BOOL classIsHere(const char* name) {
  static const struct {
    const char *prefix, *home;
  } homes[] = {
      {"Spotify", "com.spotify.client"},
      {"SPT", "com.spotify.client"},
      {"StateController", "com.spotify.client"},
      {"MPMiniPlayer", "MiniPlayer"},
      {"MT", "com.apple.podcasts"},
      {"GCM", "com.garmin.connect.mobile"},
      {"Auxo", "Auxo"},
      {"SpringBoard", "com.apple.springboard"},
      {"SB", "com.apple.springboard"},
      {"FB", "com.apple.springboard"},
      {"MPU", "com.apple.springboard"},
      {"AL", "com.apple.springboard"},
      {"AC", "com.apple.springboard"},
      {"SL", "com.apple.springboard"},
      {"AV", "com.apple.springboard"},
      {"TU", "com.apple.springboard"},
  };
  // AppList's class is looked up at each use, and so gone at once.
  if (listHolds(strcmp(name, "ALApplicationList") ? missing : device->missing, name)) return NO;
  for (unsigned i = 0; i < sizeof homes / sizeof *homes; ++i)
    if (!strncmp(name, homes[i].prefix, strlen(homes[i].prefix)))
      return !strcmp(processIdentifier, homes[i].home) ||
             (isSpringBoard && listHolds(addOns, homes[i].home));
  return YES;
}

id fresh(NSString* className) {
  return classIsHere([className UTF8String]) ? [[NSClassFromString(className) new] autorelease]
                                             : nil;
}

id shared(NSString* className) {
  static NSMutableDictionary* all;
  if (!all) all = [NSMutableDictionary new];
  if (!classIsHere([className UTF8String])) return nil;
  id known = [all objectForKey:className];
  if (known) return known;
  // Not sent -init: that is for the one who makes it to do, where it is an effect.
  [all setObject:[[NSClassFromString(className) alloc] autorelease] forKey:className];
  return [all objectForKey:className];
}

// ---- The channel

static void reply(What what) {
  Reply message = {what, answered, -1, 0};
  message.due = nextTimer(&message.timer);
  if (send(channel, &message, sizeof message, 0) < 0) _exit(0);
}

void beganPlaying(void) {
  char ready;
  reply(kBeganPlaying);
  if (recv(channel, &ready, 1, 0) <= 0) _exit(0);
}

// One callback, in a pool of its own.
static void serve(const char* line, ssize_t length) {
  NSAutoreleasePool* pool = [NSAutoreleasePool new];
  NSMutableArray* words = [NSMutableArray array];
  for (const char* word = line; word < line + length; word += strlen(word) + 1)
    [words addObject:[NSString stringWithUTF8String:word]];
  // tap-title is +[Commands tap_title:].
  NSString* name = [[words objectAtIndex:0] stringByReplacingOccurrencesOfString:@"-"
                                                                      withString:@"_"];
  platformVersion = device->version;
  answered = -1;
  @try {
    [Commands performSelector:NSSelectorFromString([name stringByAppendingString:@":"])
                   withObject:words];
  } @catch (NSException* fault) {
    effect(@"crash: %@: %@", [fault name], [fault reason]);
    _exit(1);
  }
  [pool drain];
  reply(kDone);
}

extern void nameProcess(const char* name);
void runProcess(const char* identifier, int number, int socket, const char* library) {
  NSAutoreleasePool* pool = [NSAutoreleasePool new];
  static char line[kList];
  processIdentifier = identifier;
  processNumber = number;
  libraryPath = library;
  channel = socket;
  isSpringBoard = !strcmp(identifier, "com.apple.springboard");
  strcpy(missing, device->missing);
  strcpy(addOns, device->addOns);
  nameProcess(identifier);
  watchFoundation(identifier);
  for (ssize_t length; (length = recv(channel, line, sizeof line, 0)) > 0;) serve(line, length);
  [pool drain];
  _exit(0);
}
