// SpringBoard: the application object, apps and their scenes, the lock screen, the switcher, and
// what other developers add. Left out: everything that no hook and no message of the library meets.
#include <string.h>

#import "world.h"

@interface UIApplication : NSObject
@end
CLASS(SpringBoard, UIApplication)
- (id)init {
  CALL();
  return self;
}
- (void)applicationDidFinishLaunching:(id)application { CALL(application); }
- (BOOL)launchApplicationWithIdentifier:(NSString*)identifier suspended:(BOOL)suspended {
  CALL(identifier, suspended);
  App* app = installedApp([identifier UTF8String]);
  if (!app) return NO;
  if (!suspended && !device->locked) strcpy(device->front, app->identifier);
  if (!app->running && !app->lives) {
    app->running = true;
    enqueue(kLaunch, 0, app->identifier, NULL);
  }
  return YES;
}
- (id)_accessibilityFrontMostApplication {
  return *device->front ? applicationObject(device->front) : nil;
}
@end

// ---- Apps and their scenes

@interface FBSMutableSceneSettings : NSObject {
 @public
  BOOL backgrounded;
}
@end
@implementation FBSMutableSceneSettings
- (void)setBackgrounded:(BOOL)value { backgrounded = value; }
- (id)mutableCopyWithZone:(NSZone*)zone {
  FBSMutableSceneSettings* copy = [FBSMutableSceneSettings new];
  copy->backgrounded = backgrounded;
  return copy;
}
- (NSString*)traceDescription {
  return backgrounded ? @"<backgrounded YES>" : @"<backgrounded NO>";
}
@end

@interface FBScene : NSObject {
 @public
  NSString* owner;
  FBSMutableSceneSettings* settings;
}
@end
@implementation FBScene
- (NSString*)traceOwner { return owner; }
- (id)mutableSettings { return settings; }
- (void)_applyMutableSettings:(FBSMutableSceneSettings*)given
        withTransitionContext:(id)context
                   completion:(id)completion {
  CALL(given, context, completion);
  settings->backgrounded = given->backgrounded;
}
@end

@interface SBApplication : NSObject {
 @public
  NSString* identifier;
  FBScene* scene;
}
@end
@implementation SBApplication
- (NSString*)traceOwner { return identifier; }
- (NSString*)bundleIdentifier { return identifier; }
- (NSString*)displayIdentifier { return identifier; }
- (NSString*)displayName {
  App* app = installedApp([identifier UTF8String]);
  return app ? [NSString stringWithUTF8String:app->name] : nil;
}
- (BOOL)isRunning {
  App* app = installedApp([identifier UTF8String]);
  return app && app->running;
}
- (id)mainScene { return scene; }
- (void)processDidLaunch:(id)process { CALL(process); }
- (void)resumeForContentAvailable { CALL(); }
@end

static NSMutableDictionary* applicationObjects;
void dropApplicationObject(const char* identifier) {
  [applicationObjects removeObjectForKey:[NSString stringWithUTF8String:identifier]];
}

id applicationObject(const char* identifier) {
  if (!classIsHere("SBApplication")) return nil;
  if (!applicationObjects) applicationObjects = [NSMutableDictionary new];
  NSString* key = [NSString stringWithUTF8String:identifier];
  SBApplication* known = [applicationObjects objectForKey:key];
  if (known) return known;
  SBApplication* made = [[SBApplication new] autorelease];
  made->identifier = [key copy];
  if (classIsHere("FBScene")) {
    made->scene = [FBScene new];
    made->scene->owner = made->identifier;
    made->scene->settings = [fresh(@"FBSMutableSceneSettings") retain];
  }
  [applicationObjects setObject:made forKey:key];
  return made;
}

CLASS(SBApplicationController, NSObject)
SHARED(sharedInstance)
- (id)applicationWithBundleIdentifier:(NSString*)identifier {
  const char* name = [identifier UTF8String];
  return name && installedApp(name) ? applicationObject(name) : nil;
}
- (id)applicationWithDisplayIdentifier:(NSString*)identifier {
  return [self applicationWithBundleIdentifier:identifier];
}
@end

// ---- Lock screen, backlight, Control Center

CLASS(SBLockScreenManager, NSObject)
SHARED(sharedInstance)
- (BOOL)isUILocked { return device->locked; }
- (id)lockScreenViewController { return shared(@"SBLockScreenViewController"); }
@end

CLASS(SBLockScreenViewController, NSObject)
- (void)finishUIUnlockFromSource:(int)source { CALL(source); }
- (void)setPasscodeLockVisible:(BOOL)visible animated:(BOOL)animated completion:(id)completion {
  CALL(visible, animated, completion);
}
- (void)setPasscodeLockVisible:(BOOL)visible
                      animated:(BOOL)animated
              withUnlockSource:(int)source
                    andOptions:(id)options {
  CALL(visible, animated, source, options);
}
- (void)_handleDisplayTurnedOff { CALL(); }
@end

CLASS(SBLockScreenScrollView, UIView)
- (BOOL)touchesShouldCancelInContentView:(id)view {
  CALL(view);
  return YES;
}
@end

CLASS(SBBacklightController, NSObject)
SHARED(sharedInstance)
- (BOOL)screenIsOn { return device->screenOn; }
- (BOOL)screenIsOff { return !device->screenOn; }
- (void)turnOnScreenFullyWithBacklightSource:(int)source {
  CALL(source);
  device->screenOn = true;
}
- (void)_resetLockScreenIdleTimerWithDuration:(double)seconds mode:(int)mode {
  CALL(seconds, mode);
}
@end

CLASS(SBControlCenterController, NSObject)
SHARED(sharedInstance)
- (void)dismissAnimated:(BOOL)animated { CALL(animated); }
@end

// ---- Home screen and app switcher

@implementation Icon
- (void)dealloc {
  [identifier release];
  [super dealloc];
}
@end
CLASS(SBApplicationIcon, Icon)
- (NSString*)applicationBundleID { return identifier; }
@end
CLASS(SBDisplayItem, Icon)
- (NSString*)displayIdentifier { return identifier; }
@end
CLASS(SBIconController, NSObject)
- (void)_launchIcon:(Icon*)icon {
  CALL(icon);
  if (icon)
    [shared(@"SpringBoard") launchApplicationWithIdentifier:icon->identifier
                                                             suspended:NO];
}
@end
CLASS(SBAppSliderController, NSObject)
- (void)_quitAppAtIndex:(NSUInteger)index { CALL(index); }
- (NSString*)_displayIDAtIndex:(NSUInteger)index {
  if (index >= device->appCount) [NSException raise:NSRangeException format:@"beyond cards"];
  return [NSString stringWithUTF8String:device->apps[index].identifier];
}
@end
CLASS(SBAppSwitcherModel, NSObject)
- (void)removeDisplayItem:(id)item { CALL(item); }
- (void)remove:(id)item { CALL(item); }
@end
CLASS(SBAppSuggestionManager, NSObject)
- (id)init {
  CALL();
  return self;
}
@end

// ---- Other developers' libraries

CLASS(ALApplicationList, NSObject)
SHARED(sharedApplicationList)
- (NSDictionary*)applications {
  NSMutableDictionary* names = [NSMutableDictionary dictionary];
  for (App* app = device->apps; app != device->apps + device->appCount; ++app)
    if (app->listed)
      [names setObject:[NSString stringWithUTF8String:app->name]
                forKey:[NSString stringWithUTF8String:app->identifier]];
  return names;
}
@end
CLASS(AuxoCollectionView, UIView)
- (void)activateApplicationWithDisplayIdentifier:(NSString*)identifier fromCell:(id)cell {
  CALL(identifier, cell);
}
@end
CLASS(AuxoCell, UIView)
@end
CLASS(MPMiniPlayerActionsDelegate, NSObject)
- (void)openNowPlayingApp { CALL(); }
@end
