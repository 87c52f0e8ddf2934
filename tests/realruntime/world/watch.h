// What GNUstep's Foundation is made to do otherwise.
#import "../adapter/adapter.h"

// Once, before the library is loaded. `identifier` is the process's own.
void watchFoundation(const char* identifier);
// When the next of the library's timers is due, in microseconds, and its number; -1 if none is.
int64_t nextTimer(int64_t* number);
// Fires the one that is due now.
void fireNextTimer(void);
