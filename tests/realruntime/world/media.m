// Media in SpringBoard, telephony, and the functions of frameworks that are found by name.
#include <string.h>

#import "world.h"

CLASS(SBMediaController, NSObject)
SHARED(sharedInstance)
- (BOOL)hasTrack { return *device->track != 0; }
- (BOOL)isPlaying { return *device->track && device->trackPlaying; }
- (void)play {
  CALL();
  if (*device->track) device->trackPlaying = true;
}
- (id)nowPlayingApplication { return *device->track ? applicationObject(device->track) : nil; }
- (void)setNowPlayingInfo:(id)info { CALL(info); }
@end

CLASS(MPUTransportControlsView, UIView)
@end
CLASS(MPUSystemMediaControlsViewController, NSObject)
- (void)transportControlsView:(id)view tapOnControlType:(NSInteger)type { CALL(view, type); }
- (void)mediaControlsTitlesViewWasTapped:(id)view { CALL(view); }
- (void)action_OpenApp { CALL(); }
- (void)action_openapp { CALL(); }
@end
CLASS(MPUMediaControlsTitlesView, UIView)
- (id)initWithMediaControlsStyle:(NSInteger)style {
  CALL(style);
  return self;
}
- (void)updateNowPlayingAppDisplayName:(NSString*)name { CALL(name); }
- (void)dealloc {
  CALL();
  [super dealloc];
}
@end

CLASS(AVSystemController, NSObject)
SHARED(sharedAVSystemController)
- (id)attributeForKey:(NSString*)key {
  if (![key isEqual:@"AVSystemController_HeadphoneJackIsConnectedAttribute"]) return nil;
  return [NSNumber numberWithBool:device->headphones];
}
@end
CLASS(TUCallCenter, NSObject)
SHARED(sharedInstance)
- (BOOL)inCall { return device->inCall; }
- (BOOL)anyCallIsHostedOnCurrentDevice { return device->inCall; }
@end

// ---- Functions and constants

BOOL sendMediaCommand(unsigned command, id options) {
  effect(@"MRMediaRemoteSendCommand(%u, %@)", command, options ? @"?" : @"nil");
  return YES;
}
static void playSystemSound(unsigned sound) { effect(@"AudioServicesPlaySystemSound(%u)", sound); }
static id createReachability(const void* allocator, const unsigned char* address) {
  static const unsigned char anywhere[16] = {16, 2};  // length, IPv4
  if (memcmp(address, anywhere, sizeof anywhere))
    [NSException raise:@"Reachability" format:@"of an address that is not the all-zero one"];
  return [NSObject new];
}
static unsigned char reachabilityFlags(id reachability, uint32_t* flags) {
  if (device->networkFlags < 0) return 0;
  *flags = (uint32_t)device->networkFlags;
  return 1;
}

extern BOOL mediaCommandEntry(unsigned command, id options);
static NSString *const twitterType = @"com.apple.twitter", *const twitterService =
                                                               @"SLServiceTypeTwitter";
void* exportedSymbol(const char* name) {
  const struct {
    const char* name;
    const void* address;
  } all[] = {
      {"MRMediaRemoteSendCommand", mediaCommandEntry},
      {"AudioServicesPlaySystemSound", playSystemSound},
      {"SCNetworkReachabilityCreateWithAddress", createReachability},
      {"SCNetworkReachabilityGetFlags", reachabilityFlags},
      {"ACAccountTypeIdentifierTwitter", &twitterType},
      {"SLServiceTypeTwitter", &twitterService},
  };
  for (unsigned i = 0; i < sizeof all / sizeof *all; ++i)
    if (!strcmp(all[i].name, name)) return (void*)all[i].address;
  return NULL;
}
