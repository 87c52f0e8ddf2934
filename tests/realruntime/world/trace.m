// How effects are written.
#include <stdio.h>
#include <string.h>

#import "adapter.h"

static const char* processName;
void nameProcess(const char* name) { processName = name; }

NSString* quoted(NSString* text) {
  NSMutableString* escaped = [NSMutableString stringWithString:text];
  NSString* const pairs[][2] = {{@"\\", @"\\\\"}, {@"\"", @"\\\""}, {@"\n", @"\\n"}};
  for (int i = 0; i < 3; ++i)
    [escaped replaceOccurrencesOfString:pairs[i][0]
                             withString:pairs[i][1]
                                options:NSLiteralSearch
                                  range:NSMakeRange(0, [escaped length])];
  return [NSString stringWithFormat:@"\"%@\"", escaped];
}

void effect(NSString* format, ...) {
  va_list arguments;
  va_start(arguments, format);
  NSString* call = [[NSString alloc] initWithFormat:format arguments:arguments];
  va_end(arguments);
  const int64_t hundredths = (device->now + 5000) / 10000;
  const int room = kTraceSize - device->traceLength;
  const int length = snprintf(device->trace + device->traceLength, room, "%lld.%02lld %s %s\n",
                              (long long)hundredths / 100, (long long)hundredths % 100, processName,
                              [call UTF8String]);
  if (length < room) device->traceLength += length;
  [call release];
}

static NSString* described(id object) {
  if (!object) return @"nil";
  if ([object isKindOfClass:[NSString class]]) return quoted(object);
  if ([object isKindOfClass:[NSDictionary class]]) return @"<NSDictionary>";
  if ([object respondsToSelector:@selector(traceDescription)]) return [object traceDescription];
  return [NSString stringWithFormat:@"<%@>", [object class]];
}

// The next of a variable list, as the method's own type says.
static NSString* describedArgument(const char* type, va_list arguments) {
  switch (*type) {
    case '@':
      return described(va_arg(arguments, id));
    case 'C':
      return va_arg(arguments, int) ? @"YES" : @"NO";
    case 'd':
      return [NSString stringWithFormat:@"%g", va_arg(arguments, double)];
    case 'i':
      return [NSString stringWithFormat:@"%d", va_arg(arguments, int)];
    case 'I':
      return [NSString stringWithFormat:@"%u", va_arg(arguments, unsigned)];
    default:
      return [NSString stringWithFormat:@"%ld", va_arg(arguments, long)];
  }
}

void traceCall(id self, SEL name, ...) {
  Method method = class_getInstanceMethod(object_getClass(self), name);
  NSMethodSignature* types =
      [NSMethodSignature signatureWithObjCTypes:method_getTypeEncoding(method)];
  NSMutableString* call = [NSMutableString stringWithFormat:@"-[%@", [self class]];
  if ([self respondsToSelector:@selector(traceOwner)])
    [call appendFormat:@"(%@)", [self traceOwner]];
  NSArray* parts = [NSStringFromSelector(name) componentsSeparatedByString:@":"];
  va_list arguments;
  va_start(arguments, name);
  for (NSUInteger i = 2; i < [types numberOfArguments]; ++i)
    [call appendFormat:@" %@:%@", [parts objectAtIndex:i - 2],
                       describedArgument([types getArgumentTypeAtIndex:i], arguments)];
  va_end(arguments);
  if ([types numberOfArguments] == 2) [call appendFormat:@" %@", [parts objectAtIndex:0]];
  effect(@"%@]", call);
}
