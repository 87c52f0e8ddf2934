// What the processes of one device share, in memory that all of them see: the state that exists
// without any process, the clock, the queue, and the trace written since it was last read. One
// process runs at a time, so nothing here is locked.
#pragma once
#include <stdbool.h>
#include <stdint.h>

enum {
  kText = 256,
  kList = 8192,
  kMostApps = 64,
  kMostQueued = 4096,
  kTraceSize = 1 << 22,
};

typedef struct {
  char identifier[kText];
  char name[kText];
  bool listed;  // by AppList
  bool running;
  bool lives;  // has a process
} App;

// What waits until the running callback is over.
typedef enum { kPost, kLaunch, kBlock, kAnswer } Kind;
typedef struct {
  Kind kind;
  int process;       // whose it is, by number; it goes with that process. 0: the device's
  char text[kText];  // a notification's name, or an app
  void* work;        // in that process: a block, or who waits for an answer
} Queued;

typedef struct {
  bool live;  // in real time, with GNUstep's notification daemon in place of the queue
  double version;
  int64_t now;  // microseconds
  App apps[kMostApps];
  int appCount;
  bool locked, screenOn, inCall, headphones, trackPlaying, accountsGranted, settingsReadOnly;
  char front[kText], track[kText];     // apps; empty: none
  int spotifyAfter, podcastsAfter;     // nudges until it plays; 0: never
  int64_t networkFlags;                // -1: no answer
  char missing[kList], addOns[kList];  // lists of names, each between line feeds
  char accounts[kList], schemes[kList];
  char root[kText];  // the host's folder for the device's file system
  int64_t timersMade;
  Queued queue[kMostQueued];
  int queueBegin, queueEnd;
  char trace[kTraceSize];
  int traceLength;
} Device;

// What a process sends back: that the callback is over, or that a player began to play in it.
typedef enum { kDone, kBeganPlaying } What;
typedef struct {
  What what;
  int answer;     // that the command's caller got, or -1
  int64_t due;    // when its next timer is, or -1
  int64_t timer;  // that timer's number, by creation
} Reply;

#ifdef __cplusplus
extern "C" {
#endif
extern Device* device;  // null before the first device

App* installedApp(const char* identifier);  // null if it is not
void enqueue(Kind kind, int process, const char* text, void* work);
bool listHolds(const char* list, const char* name);

// What all processes begin with: once, before the first of them, as it takes longer than the rest.
void prepareFoundation(void);
// A process of the device, from its first breath to its end: does what it is told through the
// socket. Never returns.
void runProcess(const char* identifier, int number, int socket, const char* library);
#ifdef __cplusplus
}
#endif
