// GNUstep's Foundation, asked what the cases ask: each operation of the cases is one message to it.
#import "foundation.h"

#import <Foundation/Foundation.h>
#include <string.h>
#include <unistd.h>

static NSString* quoted(NSString* text) {
  NSData* bytes = [text dataUsingEncoding:NSUTF8StringEncoding];
  return [NSString stringWithUTF8String:quotedBytes([bytes bytes], [bytes length])];
}

static NSString* shown(id object);

static NSString* shownNumber(NSNumber* number) {
  const char type = *[number objCType];
  if ([number isKindOfClass:NSClassFromString(@"NSBoolNumber")])
    return [number boolValue] ? @"true" : @"false";
  if (type == 'd' || type == 'f')
    return [NSString stringWithFormat:@"real %.17g", [number doubleValue]];
  if (type == 'Q') return [NSString stringWithFormat:@"%llu", [number unsignedLongLongValue]];
  return [NSString stringWithFormat:@"%lld", [number longLongValue]];
}

static NSString* shownDate(NSDate* date) {
  const time_t seconds = (time_t)floor([date timeIntervalSince1970]);
  struct tm parts;
  gmtime_r(&seconds, &parts);
  return [NSString stringWithFormat:@"%04d-%02d-%02dT%02d:%02d:%02dZ", parts.tm_year + 1900,
                                    parts.tm_mon + 1, parts.tm_mday, parts.tm_hour, parts.tm_min,
                                    parts.tm_sec];
}

static NSString* shownAll(id container) {
  NSMutableArray* all = [NSMutableArray array];
  const BOOL keyed = [container isKindOfClass:[NSDictionary class]];
  for (id each in container)
    [all addObject:keyed ? [NSString stringWithFormat:@"%@: %@", shown(each),
                                                      shown([container objectForKey:each])]
                         : shown(each)];
  if (keyed) [all sortUsingSelector:@selector(compare:)];
  return
      [NSString stringWithFormat:keyed ? @"{%@}" : @"(%@)", [all componentsJoinedByString:@", "]];
}

static NSString* shown(id object) {
  if (!object) return @"nil";
  if ([object isKindOfClass:[NSString class]]) return quoted(object);
  if ([object isKindOfClass:[NSNumber class]]) return shownNumber(object);
  if ([object isKindOfClass:[NSDate class]]) return shownDate(object);
  if ([object isKindOfClass:[NSDictionary class]] || [object isKindOfClass:[NSArray class]])
    return shownAll(object);
  if (![object isKindOfClass:[NSData class]]) return NSStringFromClass([object class]);
  NSMutableString* digits = [NSMutableString string];
  const unsigned char* bytes = [object bytes];
  for (NSUInteger i = 0; i < [object length]; ++i) [digits appendFormat:@"%02x", bytes[i]];
  return [NSString stringWithFormat:@"<%@>", digits];
}

// As the adapter reads: texts by the dictionary, and the binary form, which that does not read.
static NSDictionary* readFile(NSString* path) {
  NSData* data = [NSData dataWithContentsOfFile:path];
  if ([data length] < 6 || memcmp([data bytes], "bplist", 6))
    return [NSMutableDictionary dictionaryWithContentsOfFile:path];
  id root = [NSPropertyListSerialization propertyListWithData:data
                                                      options:NSPropertyListImmutable
                                                       format:NULL
                                                        error:NULL];
  return [root isKindOfClass:[NSDictionary class]] ? root : nil;
}

static NSString* filePath(void) {
  return [NSTemporaryDirectory()
      stringByAppendingPathComponent:[NSString stringWithFormat:@"semantics-%d.plist", getpid()]];
}

static NSString* readAndWritten(NSData* bytes) {
  NSString* const path = filePath();
  [bytes writeToFile:path atomically:NO];
  NSDictionary* dictionary = readFile(path);
  if (!dictionary) return @"nil";
  NSString* const first = shown(dictionary);
  const BOOL written = [dictionary writeToFile:path atomically:YES];
  NSString* const again = written ? shown(readFile(path)) : @"nothing";
  return [again isEqual:first] ? first
                               : [NSString stringWithFormat:@"%@, written as %@", first, again];
}

static NSString* truth(BOOL value) { return value ? @"YES" : @"NO"; }

static id element(NSData* xml) {
  [xml writeToFile:filePath() atomically:NO];
  return [readFile(filePath()) objectForKey:@"v"];
}

static NSString* answered(NSString* operation, NSData* input, NSData* second) {
#define IS(name) [operation isEqual:@name]
  if (IS("read")) return readAndWritten(input);
  if (IS("truth"))
    return [element(input) respondsToSelector:@selector(boolValue)]
               ? truth([element(input) boolValue])
               : @"none";
  if (IS("contains"))
    return truth([[NSArray arrayWithObject:element(input)] containsObject:element(second)]);
#define TEXT(data) [[[NSString alloc] initWithData:data encoding:NSUTF8StringEncoding] autorelease]
  NSString* const text = TEXT(input);
  if (IS("boolValue")) return truth([text boolValue]);
  if (IS("length")) return [NSString stringWithFormat:@"%lu", (unsigned long)[text length]];
  if (IS("isEqualToString")) return truth([text isEqualToString:TEXT(second)]);
  if (IS("percentEscaped"))
    return shown([text stringByAddingPercentEscapesUsingEncoding:NSUTF8StringEncoding]);
  if (IS("address")) return shown([[NSURL URLWithString:text] absoluteString]);
  return @"no such operation";
}

const char* foundationAnswer(const char* operation, const char* first, size_t firstLength,
                             const char* second, size_t secondLength) {
  static NSString* answer;
  NSAutoreleasePool* pool = [NSAutoreleasePool new];
  [answer release];
  [[NSUserDefaults standardUserDefaults]
      registerDefaults:[NSDictionary dictionaryWithObject:@"YES" forKey:@"GSMacOSXCompatible"]];
  @try {
    answer = answered([NSString stringWithUTF8String:operation],
                      [NSData dataWithBytes:first length:firstLength],
                      [NSData dataWithBytes:second length:secondLength]);
  } @catch (NSException* fault) {
    answer = [@"throws " stringByAppendingString:[fault name]];
  }
  [answer retain];
  [[NSFileManager defaultManager] removeFileAtPath:filePath() handler:nil];
  [pool drain];
  return [answer UTF8String];
}
