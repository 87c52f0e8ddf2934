// The library's two categories and its class as the compiler's metadata, which the runtime attaches
// while it maps the image. Methods have the library's names and types and next to no bodies.
#include "platform.h"

typedef void (^Block)(void);

@interface NSTimer : NSObject
@end
@interface UIAlertView : NSObject
@end

#define CALLBACK(getter, setter) \
  -(Block)getter { return (Block)objc_getAssociatedObject(self, @selector(getter)); } \
  -(void)setter : (Block)block { \
    objc_setAssociatedObject(self, @selector(getter), (id)block, 0x303); \
  }

@interface UIAlertView (qohjpXd2LfI70yaz)
@property(copy) Block responseBlock;
@property(copy) Block willDismissOurBlock;
@property(copy) Block didDismissOurBlock;
@property(copy) Block willPresentOurBlock;
@property(copy) Block didPresentOurBlock;
@property(copy) Block cancelOurBlock;
@property(copy) Block shouldEnableFirstOtherButtonInOurBlock;
@end

@implementation UIAlertView (qohjpXd2LfI70yaz)
+ (id)showWithTitleCVP:(NSString*)title
               message:(NSString*)message
                 style:(Integer)style
     cancelButtonTitle:(NSString*)cancel
     otherButtonTitles:(id)others
         responseBlock:(Block)response {
  return self;
}
+ (id)showWithTitleCVP:(NSString*)title
               message:(NSString*)message
     cancelButtonTitle:(NSString*)cancel
     otherButtonTitles:(id)others
         responseBlock:(Block)response {
  return self;
}
CALLBACK(responseBlock, setResponseBlock)
CALLBACK(willDismissOurBlock, setWillDismissOurBlock)
CALLBACK(didDismissOurBlock, setDidDismissOurBlock)
CALLBACK(willPresentOurBlock, setWillPresentOurBlock)
CALLBACK(didPresentOurBlock, setDidPresentOurBlock)
CALLBACK(cancelOurBlock, setCancelOurBlock)
CALLBACK(shouldEnableFirstOtherButtonInOurBlock, setShouldEnableFirstOtherButtonInOurBlock)
- (void)_checkAlertViewDelegate {
}
- (void)willPresentAlertView:(UIAlertView*)alert {
}
- (void)didPresentAlertView:(UIAlertView*)alert {
}
- (void)alertViewCancel:(UIAlertView*)alert {
}
- (void)alertView:(UIAlertView*)alert clickedButtonAtIndex:(Integer)button {
}
- (void)alertView:(UIAlertView*)alert willDismissWithButtonIndex:(Integer)button {
}
- (void)alertView:(UIAlertView*)alert didDismissWithButtonIndex:(Integer)button {
}
- (Flag)alertViewShouldEnableFirstOtherButton:(UIAlertView*)alert {
  return 1;
}
@end

@implementation NSTimer (CVProTimer)
+ (void)rvExecuteSimpleBlock:(NSTimer*)timer {
}
+ (id)scheduledTimerWithTimeInterval:(double)seconds block:(Block)block repeats:(Flag)repeats {
  return self;
}
+ (id)timerWithTimeInterval:(double)seconds block:(Block)block repeats:(Flag)repeats {
  return self;
}
@end

@interface CVPTWHandler : NSObject
@end

@implementation CVPTWHandler
- (void)alertView:(UIAlertView*)alert clickedButtonAtIndex:(Integer)button {
}
- (void)dropMeAFollow {
}
- (void)followWithAccount:(id)account {
}
- (void)openTwitter {
}
@end
