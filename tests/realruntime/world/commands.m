// What a process can be told: commands of the scenario language, and steps of the device's queue.
// `tap-title` is +tap_title:, and so on; `w` are the words of the line, the command's name first.
#include <dlfcn.h>
#include <string.h>

#import "process.h"
#import "watch.h"
#import "world.h"

#define WORD(i) [w objectAtIndex:i]
#define TEXT(i) [WORD(i) UTF8String]
#define IS(i, word) [WORD(i) isEqual:@word]
int answered;

static id pointer(NSString* word) { return (id)strtoul([word UTF8String], NULL, 10); }
static id iconOf(NSString* className, NSString* identifier) {
  Icon* icon = fresh(className);
  if (icon) icon->identifier = [identifier copy];
  return icon;
}

@implementation Commands
+ (void)start:(NSArray*)w {
  if (!dlopen(libraryPath, RTLD_NOW | RTLD_LOCAL))
    [NSException raise:@"Library" format:@"%s", dlerror()];
  if (!isSpringBoard) return startApp(processIdentifier);
  [shared(@"SpringBoard") init];
  if (classIsHere("SBAppSuggestionManager"))
    [[NSClassFromString(@"SBAppSuggestionManager") alloc] init];
  [shared(@"SpringBoard") applicationDidFinishLaunching:shared(@"SpringBoard")];
}
+ (void)deliver:(NSArray*)w { deliverDarwin(WORD(1)); }
+ (void)run:(NSArray*)w {  // the real run loop, for so many seconds
  NSDate* end = [NSDate dateWithTimeIntervalSinceNow:[WORD(1) doubleValue]];
  [[NSRunLoop currentRunLoop] runUntilDate:end];
}
+ (void)timer_due:(NSArray*)w { fireNextTimer(); }
+ (void)block:(NSArray*)w {
  id block = pointer(WORD(1));
  callBlock(block, NO);
  [block release];
}
+ (void)answer:(NSArray*)w { answerOnThread(pointer(WORD(1))); }
+ (void)open:(NSArray*)w {
  [shared(@"SpringBoard") launchApplicationWithIdentifier:WORD(1) suspended:IS(2, "suspended")];
}
+ (void)tap_transport:(NSArray*)w {
  [shared(@"MPUSystemMediaControlsViewController")
      transportControlsView:fresh(@"MPUTransportControlsView")
           tapOnControlType:[WORD(1) intValue]];
}
+ (void)tap_title:(NSArray*)w {
  [shared(@"MPUSystemMediaControlsViewController")
      mediaControlsTitlesViewWasTapped:shared(@"MPUMediaControlsTitlesView")];
}
+ (void)tap_icon:(NSArray*)w {
  [shared(@"SBIconController") _launchIcon:iconOf(@"SBApplicationIcon", WORD(1))];
}
+ (void)remote:(NSArray*)w {
  BOOL (*send)(unsigned, id) = exportedSymbol("MRMediaRemoteSendCommand");
  answered = send((unsigned)[WORD(1) longLongValue], nil);
}
+ (void)new_controller:(NSArray*)w { makePlaybackController(); }
+ (void)watch:(NSArray*)w {
  [shared(@"GCMMusicController") didReceiveCommand:(unsigned)[WORD(1) longLongValue]];
}
+ (void)headphones:(NSArray*)w {
  NSString* const name = @"AVSystemController_HeadphoneJackIsConnectedDidChangeNotification";
  device->headphones = IS(1, "in");
  [[NSNotificationCenter defaultCenter] postNotificationName:name object:nil];
}
+ (void)now_playing:(NSArray*)w {
  [shared(@"SBMediaController") setNowPlayingInfo:IS(1, "yes") ? [NSDictionary dictionary] : nil];
}
+ (void)process_launched:(NSArray*)w { [applicationObject(TEXT(1)) processDidLaunch:nil]; }
+ (void)drop_application:(NSArray*)w { dropApplicationObject(TEXT(1)); }
+ (void)quit_card:(NSArray*)w {
  NSString* const model = @"SBAppSwitcherModel";
  if (device->version < 900.0)
    [shared(@"SBAppSliderController") _quitAppAtIndex:installedApp(TEXT(1)) - device->apps];
  else if (device->version < 1240.1)
    [shared(model) removeDisplayItem:iconOf(@"SBDisplayItem", WORD(1))];
  else
    [shared(model) remove:iconOf(@"SBDisplayItem", WORD(1))];
}
+ (void)unlock:(NSArray*)w {
  device->locked = false;
  device->screenOn = true;
  [shared(@"SBLockScreenViewController") finishUIUnlockFromSource:0];
}
+ (void)passcode:(NSArray*)w {
  id block = IS(3, "yes") ? [[NSClassFromString(@"CVGlobalBlock") new] autorelease] : nil;
  [shared(@"SBLockScreenViewController") setPasscodeLockVisible:IS(1, "yes")
                                                       animated:IS(2, "yes")
                                                     completion:block];
}
+ (void)display_off:(NSArray*)w {
  device->screenOn = false;
  [shared(@"SBLockScreenViewController") _handleDisplayTurnedOff];
}
+ (void)drag_lock_screen:(NSArray*)w {
  id view = fresh(@"SBLockScreenScrollView");
  if (view) answered = [view touchesShouldCancelInContentView:[[UIView new] autorelease]];
}
+ (void)title_view:(NSArray*)w {
  static NSMutableDictionary* views;
  if (!views) views = [NSMutableDictionary new];
  NSString* const name = @"MPUMediaControlsTitlesView";
  if (IS(1, "new") && classIsHere([name UTF8String])) {
    id view = [[NSClassFromString(name) alloc] initWithMediaControlsStyle:0];
    [views setObject:[view autorelease] forKey:WORD(2)];
  } else if (IS(1, "show")) {
    [[views objectForKey:WORD(2)] updateNowPlayingAppDisplayName:WORD(3)];
  } else {
    [views removeObjectForKey:WORD(2)];
  }
}
+ (void)widget:(NSArray*)w {
  id controls = shared(@"MPUSystemMediaControlsViewController");
  if (IS(1, "Acapella"))
    [controls action_OpenApp];
  else if (IS(1, "Acapella2"))
    [controls action_openapp];
  else if (IS(1, "MiniPlayer"))
    [shared(@"MPMiniPlayerActionsDelegate") openNowPlayingApp];
  else
    [shared(@"AuxoCollectionView")
        activateApplicationWithDisplayIdentifier:WORD(2)
                                        fromCell:IS(3, "cell") ? fresh(@"AuxoCell") : nil];
}
+ (void)press:(NSArray*)w { [topAlert() press:[WORD(1) integerValue]]; }
@end
