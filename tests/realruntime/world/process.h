// A process of the device, and what it can be told.
#import "../adapter/adapter.h"

@interface Commands : NSObject
@end
extern int answered;  // what the running command's caller got, or -1
extern const char *processIdentifier, *libraryPath;
