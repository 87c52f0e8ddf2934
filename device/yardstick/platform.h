// The few declarations that a plain tweak takes from the vendor's headers.
#pragma once

typedef signed char Flag;
#if __LP64__
typedef long Integer;
#else
typedef int Integer;
#endif
typedef const void* CFTypeRef;
typedef CFTypeRef CFStringRef;
typedef CFTypeRef CFNotificationCenterRef;
typedef void (*CFNotificationCallback)(CFNotificationCenterRef, void*, CFStringRef, const void*,
                                       CFTypeRef);

extern double kCFCoreFoundationVersionNumber;
CFNotificationCenterRef CFNotificationCenterGetDarwinNotifyCenter(void);
void CFNotificationCenterAddObserver(CFNotificationCenterRef, const void*, CFNotificationCallback,
                                     CFStringRef, const void*, Integer);
int notify_post(const char*);
void* dlsym(void*, const char*);
void MSHookFunction(void*, void*, void**);
id objc_getAssociatedObject(id, const void*);
void objc_setAssociatedObject(id, const void*, id, unsigned long);

__attribute__((objc_root_class)) @interface NSObject
@end
@interface NSString : NSObject
- (Flag)isEqualToString:(NSString*)other;
@end
@interface NSBundle : NSObject
+ (NSBundle*)mainBundle;
- (NSString*)bundleIdentifier;
@end
