// SpringBoard's, UIKit's and the apps' classes, as far as the library and scenarios reach them.
// Each method that the trace shows begins with CALL(its arguments).
#import "../adapter/adapter.h"

// The one object of a class, borrowed; a new one, autoreleased. nil where the class is missing.
id shared(NSString* className);
id fresh(NSString* className);
#define SHARED(name)                        \
  +(id)name {                               \
    return shared(NSStringFromClass(self)); \
  }

@interface UIView : NSObject
@end
@interface Icon : NSObject {  // what stands for an app on the home screen, or in the app switcher
 @public
  NSString* identifier;
}
@end

// The messages that come from another file.
@interface NSObject (World)
+ (id)sharedApplication;  // there even where the class cannot be found by name
- (void)applicationDidFinishLaunching:(id)application;
- (BOOL)launchApplicationWithIdentifier:(NSString*)identifier suspended:(BOOL)suspended;
- (void)processDidLaunch:(id)process;
- (void)setNowPlayingInfo:(id)info;
- (void)transportControlsView:(id)view tapOnControlType:(NSInteger)type;
- (void)mediaControlsTitlesViewWasTapped:(id)view;
- (void)action_OpenApp;
- (void)action_openapp;
- (id)initWithMediaControlsStyle:(NSInteger)style;
- (void)updateNowPlayingAppDisplayName:(NSString*)name;
- (void)_launchIcon:(Icon*)icon;
- (void)_quitAppAtIndex:(NSUInteger)index;
- (void)removeDisplayItem:(id)item;
- (void)remove:(id)item;
- (void)finishUIUnlockFromSource:(int)source;
- (void)setPasscodeLockVisible:(BOOL)visible animated:(BOOL)animated completion:(id)completion;
- (void)_handleDisplayTurnedOff;
- (BOOL)touchesShouldCancelInContentView:(id)view;
- (void)activateApplicationWithDisplayIdentifier:(NSString*)identifier fromCell:(id)cell;
- (void)openNowPlayingApp;
- (void)didReceiveCommand:(unsigned)command;
- (void)press:(NSInteger)button;  // of an alert
@end

id applicationObject(const char* identifier);  // SpringBoard's, of an app, until it is dropped
void dropApplicationObject(const char* identifier);
id topAlert(void);  // nil if none is up
// An app's own start-up, when its process comes up; and another of Spotify's controllers.
void startApp(const char* identifier);
void makePlaybackController(void);
// A player plays: SpringBoard is told before this returns.
void beganPlaying(void);
// Lets a framework's thread call the library's handler, and waits for it.
void answerOnThread(id handler);
