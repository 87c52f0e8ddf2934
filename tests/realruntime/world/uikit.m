// UIKit, Accounts and Social, as far as alerts and the greeting's follow need them.
#import "world.h"

@implementation UIView
@end
CLASS(UIApplication, NSObject)
+ (id)sharedApplication {
  static id ofApp;
  if (isSpringBoard) return shared(@"SpringBoard");
  if (!ofApp) ofApp = [UIApplication new];
  return ofApp;
}
- (BOOL)canOpenURL:(NSURL*)url {
  NSString* scheme = [[[url absoluteString] componentsSeparatedByString:@":"] objectAtIndex:0];
  return scheme && listHolds(device->schemes, [scheme UTF8String]);
}
- (BOOL)openURL:(NSURL*)url {
  effect(@"-[%@ openURL:%@]", [self class], url ? quoted([url absoluteString]) : @"nil");
  return YES;
}
@end

static NSMutableArray* shown;  // the system holds the alerts that are up
static NSString* orNil(NSString* text) { return text ? quoted(text) : @"nil"; }

id topAlert(void) { return [shown lastObject]; }

@interface UIAlertView : UIView {
  NSString *title, *message;
  NSMutableArray* buttons;
  id delegate;
  NSInteger tag, cancelIndex;
}
- (NSInteger)addButtonWithTitle:(NSString*)text;
@end
@implementation UIAlertView
- (id)initWithTitle:(NSString*)theTitle
              message:(NSString*)theMessage
             delegate:(id)theDelegate
    cancelButtonTitle:(NSString*)cancel
    otherButtonTitles:(NSString*)other, ... {
  buttons = [NSMutableArray new];
  title = [theTitle copy];
  message = [theMessage copy];
  delegate = theDelegate;
  cancelIndex = cancel ? [self addButtonWithTitle:cancel] : -1;
  va_list rest;
  va_start(rest, other);
  for (; other; other = va_arg(rest, NSString*)) [self addButtonWithTitle:other];
  va_end(rest);
  return self;
}
- (void)dealloc {
  [title release];
  [message release];
  [buttons release];
  [super dealloc];
}
- (void)setAlertViewStyle:(NSInteger)style {}
- (NSInteger)addButtonWithTitle:(NSString*)text {
  [buttons addObject:text];
  return [buttons count] - 1;
}
- (NSString*)buttonTitleAtIndex:(NSInteger)index { return [buttons objectAtIndex:index]; }
- (NSInteger)cancelButtonIndex { return cancelIndex; }
- (NSInteger)tag { return tag; }
- (void)setTag:(NSInteger)value { tag = value; }
- (id)delegate { return delegate; }
- (void)setDelegate:(id)value { delegate = value; }
- (void)tell:(SEL)name button:(NSInteger)button {
  id listener = [[delegate retain] autorelease];
  if (![listener respondsToSelector:name]) return;
  ((void (*)(id, SEL, id, NSInteger))objc_msg_lookup(listener, name))(listener, name, self, button);
}
- (void)show {
  NSMutableArray* titles = [NSMutableArray array];
  for (NSString* button in buttons) [titles addObject:quoted(button)];
  effect(@"-[UIAlertView show] %@ %@ [%@] tag %ld", orNil(title), orNil(message),
         [titles componentsJoinedByString:@", "], (long)tag);
  if (!shown) shown = [NSMutableArray new];
  [self tell:@selector(willPresentAlertView:) button:0];
  [shown addObject:self];
  [self tell:@selector(didPresentAlertView:) button:0];
}
- (void)press:(NSInteger)button {
  [[self retain] autorelease];
  [self tell:@selector(alertView:clickedButtonAtIndex:) button:button];
  [self tell:@selector(alertView:willDismissWithButtonIndex:) button:button];
  [shown removeObjectIdenticalTo:self];
  [self tell:@selector(alertView:didDismissWithButtonIndex:) button:button];
}
@end

// ---- Accounts and Social: the answers come later, on a thread of the framework's

@interface Handler : NSObject {
  id block;
  BOOL granted;
  NSConditionLock* finished;
}
@end
@implementation Handler
+ (void)call:(id)block {
  Handler* handler = [Handler new];
  handler->block = copyBlock(block);
  enqueue(kAnswer, processNumber, "", handler);
}
- (void)run {
  NSAutoreleasePool* pool = [NSAutoreleasePool new];
  callBlock(block, device->accountsGranted);
  [block release];
  [pool drain];
  [finished lock];
  [finished unlockWithCondition:1];
}
- (void)answer {
  finished = [[NSConditionLock alloc] initWithCondition:0];
  [NSThread detachNewThreadSelector:@selector(run) toTarget:self withObject:nil];
  [finished lockWhenCondition:1];
  [finished unlock];
  [finished release];
  [self release];
}
@end
void answerOnThread(id handler) { [handler answer]; }

CLASS(ACAccountType, NSObject)
@end
@interface ACAccount : NSObject {
 @public
  NSString* username;
}
@end
@implementation ACAccount
- (NSString*)username { return username; }
@end
CLASS(ACAccountStore, NSObject)
- (id)accountTypeWithAccountTypeIdentifier:(NSString*)identifier {
  return [identifier isEqual:@"com.apple.twitter"] ? shared(@"ACAccountType") : nil;
}
- (void)requestAccessToAccountsWithType:(id)type withCompletionHandler:(id)block {
  effect(@"-[ACAccountStore requestAccessToAccountsWithType:withCompletionHandler:]");
  [Handler call:block];
}
- (NSArray*)accountsWithAccountType:(id)type {
  NSMutableArray* all = [NSMutableArray array];
  NSString* names = [NSString stringWithUTF8String:device->accounts];
  for (NSString* name in [names componentsSeparatedByString:@"\n"]) {
    ACAccount* account = [name length] ? fresh(@"ACAccount") : nil;
    if (!account) continue;
    account->username = [name copy];
    [all addObject:account];
  }
  return all;
}
@end

@interface SLRequest : NSObject {
  NSURL* url;
  NSDictionary* parameters;
  ACAccount* account;
}
@end
@implementation SLRequest
+ (id)requestForServiceType:(NSString*)service
              requestMethod:(NSInteger)method
                        URL:(NSURL*)url
                 parameters:(NSDictionary*)parameters {
  if (![service isEqual:@"SLServiceTypeTwitter"] || method != 1)
    [NSException raise:@"Request" format:@"that is no POST to Twitter"];
  SLRequest* request = [[SLRequest new] autorelease];
  request->url = [url retain];
  request->parameters = [parameters retain];
  return request;
}
- (void)dealloc {
  [url release];
  [parameters release];
  [account release];
  [super dealloc];
}
- (void)setAccount:(ACAccount*)value { account = [value retain]; }
- (void)performRequestWithHandler:(id)block {
  NSMutableArray* pairs = [NSMutableArray array];
  for (NSString* key in [[parameters allKeys] sortedArrayUsingSelector:@selector(compare:)])
    [pairs
        addObject:[NSString stringWithFormat:@"%@=%@", key, quoted([parameters objectForKey:key])]];
  effect(@"-[SLRequest performRequestWithHandler:] POST %@ {%@} as %@",
         quoted([url absoluteString]), [pairs componentsJoinedByString:@", "],
         orNil([account username]));
  [Handler call:block];
}
@end
