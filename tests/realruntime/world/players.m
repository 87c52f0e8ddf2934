// Spotify, Podcasts and Garmin Connect: what each has for the library, and its start-up.
#include <string.h>

#import "world.h"

// A player begins to play at the nudge that the device is set for; 0 is never.
static int nudges, nudgesNeeded;
static BOOL nudged(void) { return nudgesNeeded && ++nudges == nudgesNeeded; }
static enum { kIdle, kPlaying, kPaused } phase;

static void begin(const char* app) {
  phase = kPlaying;
  strcpy(device->track, app);
  device->trackPlaying = true;
  beganPlaying();
}

// ---- Spotify

static const char* const kSpotify = "com.spotify.client";

CLASS(SPTPlayerState, NSObject)
- (BOOL)isPlaying { return phase == kPlaying; }
- (BOOL)isPaused { return phase == kPaused; }
@end
CLASS(SPTPlayer, NSObject)
- (id)playerState { return shared(@"SPTPlayerState"); }
- (void)setPaused:(BOOL)paused {
  CALL(paused);
  if (![self playerState]) return;
  if (!paused && nudged() && phase == kIdle) {
    begin(kSpotify);
  } else if (phase == (paused ? kPlaying : kPaused)) {
    phase = paused ? kPaused : kPlaying;
    if (!strcmp(device->track, kSpotify)) device->trackPlaying = !paused;
  }
}
@end
@interface SPTNowPlayingPlaybackController : NSObject {
  SPTPlayer* player;
}
@end
@implementation SPTNowPlayingPlaybackController
- (id)initWithPlayer:(SPTPlayer*)given
              trackPosition:(id)position
    radioThumbsStateManager:(id)thumbs
                 adsManager:(id)ads
         trackMetadataQueue:(id)queue {
  CALL(given, position, thumbs, ads, queue);
  player = [given retain];
  return self;
}
- (id)player { return player; }
@end
void makePlaybackController(void) {
  if (classIsHere("SPTNowPlayingPlaybackController") && classIsHere("SPTPlayer"))
    [[SPTNowPlayingPlaybackController alloc] initWithPlayer:shared(@"SPTPlayer")
                                              trackPosition:nil
                                    radioThumbsStateManager:nil
                                                 adsManager:nil
                                         trackMetadataQueue:nil];
}
CLASS(SpotifyAppDelegate, NSObject)
- (BOOL)application:(id)application didFinishLaunchingWithOptions:(id)options {
  CALL(application, options);
  return YES;
}
@end
CLASS(StateController, NSObject)
SHARED(sharedStateController)
- (void)saveState { CALL(); }
@end

// ---- Podcasts

CLASS(MTPlayer, NSObject)
- (void)play {
  CALL();
  if (nudged() && phase != kPlaying) begin("com.apple.podcasts");
}
@end
CLASS(MTPlayerViewController, NSObject)
- (id)player { return shared(@"MTPlayer"); }
@end
CLASS(MTPlayerController, MTPlayerViewController)
SHARED(sharedInstance)
- (id)playerViewController { return shared(@"MTPlayerViewController"); }
- (BOOL)isPlaying { return classIsHere("MTPlayer") && phase == kPlaying; }
@end
#define PODCASTS_DELEGATE(name)                                                    \
  CLASS(name, NSObject)                                                            \
  -(BOOL)application : (id)application willFinishLaunchingWithOptions : (id)options { \
    CALL(application, options);                                                    \
    return YES;                                                                    \
  }                                                                                \
  @end
PODCASTS_DELEGATE(MTAppDelegate)
PODCASTS_DELEGATE(MTAppDelegate_iOS)

// ---- Garmin Connect

CLASS(GCMMusicController, NSObject)
- (void)didReceiveCommand:(unsigned)command { CALL(command); }
@end

// ---- Start-up

void startApp(const char* identifier) {
  id application = [NSClassFromString(@"UIApplication") sharedApplication];
  const BOOL podcasts = !strcmp(identifier, "com.apple.podcasts");
  nudgesNeeded = podcasts ? device->podcastsAfter : device->spotifyAfter;
  if (!strcmp(identifier, kSpotify)) {
    id delegate = shared(@"SpotifyAppDelegate");
    [delegate application:application didFinishLaunchingWithOptions:nil];
    makePlaybackController();
  } else if (podcasts) {
    const BOOL newer = device->version >= 1240.1;  // iOS 9
    [shared(newer ? @"MTAppDelegate_iOS" : @"MTAppDelegate")
                           application:application
        willFinishLaunchingWithOptions:nil];
  }
}
