// Views over Foundation's classes. Stands in for its headers; leaves out every class and method
// that the library does not use.
#pragma once
#include "platform/constant_string.hpp"
#include "platform/message.hpp"

namespace platform {

struct NSObject : Object {
  bool respondsTo(SEL name) const { return send<"respondsToSelector:", bool>(*this, name); }
  bool isKindOfClass(ClassObject cls) const {
    return send<"isKindOfClass:", bool>(*this, cls.cls());
  }
  // Of a class: what its instances run for that message.
  IMP instanceMethodFor(SEL name) const {
    return send<"instanceMethodForSelector:", IMP>(*this, name);
  }
};

struct NSString : Object {
  static ClassObject cls() { return classNamed<"NSString">(); }

  // Replaces "%@" in `format` by the arguments. Autoreleased.
  template <class... A>
  static NSString stringWithFormat(NSString format, A... arguments) {
    return sendVariadic<"stringWithFormat:", NSString>(cls(), format, arguments...);
  }

  NSUInteger length() const { return send<"length", NSUInteger>(*this); }
  bool isEqualToString(NSString other) const {
    return send<"isEqualToString:", bool>(*this, other);
  }
  NSString stringByAppendingString(NSString tail) const {  // autoreleased
    return send<"stringByAppendingString:", NSString>(*this, tail);
  }
  NSString stringByAddingPercentEscapesUsingEncoding(NSUInteger encoding) const {  // autoreleased
    return send<"stringByAddingPercentEscapesUsingEncoding:", NSString>(*this, encoding);
  }
  Retained<NSString> copy() const {
    return Retained<NSString>::adopt(send<"copy", NSString>(*this));
  }
};
inline constexpr NSUInteger kUtf8StringEncoding = 4;

struct NSNumber : Object {
  static NSNumber numberWithBool(bool value) {  // autoreleased
    return send<"numberWithBool:", NSNumber>(classNamed<"NSNumber">(), value);
  }
};

struct NSURL : Object {
  static NSURL URLWithString(NSString text) {  // autoreleased; nil if it is no address
    return send<"URLWithString:", NSURL>(classNamed<"NSURL">(), text);
  }
};

// What fast enumeration fills in; zeroed before the first use.
struct NSFastEnumerationState {
  unsigned long state = 0;
  id* items = nullptr;
  unsigned long* mutations = nullptr;
  unsigned long extra[5] = {};
};

struct NSArray : Object {
  static NSArray arrayWithObject(Object only) {  // autoreleased
    return send<"arrayWithObject:", NSArray>(classNamed<"NSArray">(), only);
  }

  NSUInteger count() const { return send<"count", NSUInteger>(*this); }
  Object objectAtIndex(NSUInteger index) const {  // borrowed
    return send<"objectAtIndex:", Object>(*this, index);
  }
  bool containsObject(Object wanted) const { return send<"containsObject:", bool>(*this, wanted); }
  // From `location` on, `length` elements. Autoreleased. The range, a structure of two words, is
  // passed as two words: on every device that is the same.
  NSArray subarrayWithRange(NSUInteger location, NSUInteger length) const {
    using Prototype = id (*)(id, SEL, NSUInteger, NSUInteger);
    const auto method = reinterpret_cast<Prototype>(&objc_msgSend);
    return view<NSArray>(method(raw, selector<"subarrayWithRange:">(), location, length));
  }
  // Hands out at most `count` elements; 0 at the end.
  NSUInteger countByEnumerating(NSFastEnumerationState* state, id* buffer, NSUInteger count) const {
    return send<"countByEnumeratingWithState:objects:count:", NSUInteger>(*this, state, buffer,
                                                                          count);
  }
};

// Elements are compared by isEqual: for removal; null callbacks at creation make it hold them
// without a reference.
struct NSMutableArray : NSArray {
  static Retained<NSMutableArray> make() {
    return Retained<NSMutableArray>::adopt(
        send<"new", NSMutableArray>(classNamed<"NSMutableArray">()));
  }
  void addObject(Object element) const { send<"addObject:">(*this, element); }
  void removeObject(Object element) const { send<"removeObject:">(*this, element); }
};

// Calls `each(element)` for every element, in batches of 16. A collection that changes meanwhile
// ends the process, as the platform wants it.
template <class Each>
void enumerate(NSArray array, Each each) {
  constexpr NSUInteger kBatch = 16;
  NSFastEnumerationState state;
  id buffer[kBatch];
  NSUInteger count = array.countByEnumerating(&state, buffer, kBatch);
  if (count == 0) return;
  const unsigned long unchanged = *state.mutations;
  do {
    for (NSUInteger i = 0; i < count; ++i) {
      if (*state.mutations != unchanged) objc_enumerationMutation(array.raw);
      each(view(state.items[i]));
    }
    count = array.countByEnumerating(&state, buffer, kBatch);
  } while (count != 0);
}

struct NSDictionary : Object {
  // Value, key, value, key, …; every one an object. Autoreleased.
  template <class... A>
  static NSDictionary dictionaryWithObjectsAndKeys(Object first, A... rest) {
    return sendVariadic<"dictionaryWithObjectsAndKeys:", NSDictionary>(classNamed<"NSDictionary">(),
                                                                       first, rest..., Object{});
  }

  NSUInteger count() const { return send<"count", NSUInteger>(*this); }
  Object objectForKey(NSString key) const { return send<"objectForKey:", Object>(*this, key); }
  Object objectForKeyedSubscript(NSString key) const {
    return send<"objectForKeyedSubscript:", Object>(*this, key);
  }
  NSArray allKeys() const { return send<"allKeys", NSArray>(*this); }  // autoreleased
};

struct NSMutableDictionary : NSDictionary {
  static ClassObject cls() { return classNamed<"NSMutableDictionary">(); }

  static Retained<NSMutableDictionary> make() {
    return Retained<NSMutableDictionary>::adopt(send<"new", NSMutableDictionary>(cls()));
  }
  // The property list at `path`; nothing if it cannot be read or is no dictionary.
  static Retained<NSMutableDictionary> withContentsOfFile(NSString path) {
    const Object fresh = send<"alloc", Object>(cls());
    return Retained<NSMutableDictionary>::adopt(
        send<"initWithContentsOfFile:", NSMutableDictionary>(fresh, path));
  }
  static Retained<NSMutableDictionary> copyOf(NSDictionary other) {
    return Retained<NSMutableDictionary>::adopt(send<"mutableCopy", NSMutableDictionary>(other));
  }

  void setValueForKey(Object value, NSString key) const {  // nil removes the key
    send<"setValue:forKey:">(*this, value, key);
  }
  bool writeToFile(NSString path, bool atomically) const {
    return send<"writeToFile:atomically:", bool>(*this, path, atomically);
  }
};

struct NSFileManager : Object {
  static NSFileManager defaultManager() {
    return send<"defaultManager", NSFileManager>(classNamed<"NSFileManager">());
  }
  bool fileExistsAtPath(NSString path) const {
    return send<"fileExistsAtPath:", bool>(*this, path);
  }
};

struct NSBundle : Object {
  static NSBundle mainBundle() { return send<"mainBundle", NSBundle>(classNamed<"NSBundle">()); }
  NSString bundleIdentifier() const {  // borrowed; nil for processes without a bundle
    return send<"bundleIdentifier", NSString>(*this);
  }
  static NSBundle bundleWithPath(NSString path) {  // autoreleased; nil if there is none
    return send<"bundleWithPath:", NSBundle>(classNamed<"NSBundle">(), path);
  }
  // The text in the user's language, or `text` itself if it has none there. `table` is the name of
  // a .strings file. Autoreleased.
  NSString localized(NSString text, NSString table) const {
    return send<"localizedStringForKey:value:table:", NSString>(*this, text, text, table);
  }
  Object infoValue(NSString key) const {  // of its Info.plist; borrowed
    return send<"objectForInfoDictionaryKey:", Object>(*this, key);
  }
};

struct NSPredicate : Object {
  // Replaces "%@" in `format` by the argument. Autoreleased.
  static NSPredicate withFormat(NSString format, Object argument) {
    return sendVariadic<"predicateWithFormat:", NSPredicate>(classNamed<"NSPredicate">(), format,
                                                             argument);
  }
  bool accepts(Object object) const { return send<"evaluateWithObject:", bool>(*this, object); }
};

struct NSTimer : Object {
  static ClassObject cls() { return classNamed<"NSTimer">(); }

  // Target and userInfo are held until the timer is invalidated. Autoreleased; the first one is
  // scheduled on the current run loop, which holds it.
  static NSTimer scheduledTimer(NSTimeInterval interval, Object target, SEL action, Object userInfo,
                                bool repeats) {
    return send<"scheduledTimerWithTimeInterval:target:selector:userInfo:repeats:", NSTimer>(
        cls(), interval, target, action, userInfo, repeats);
  }
  static NSTimer timer(NSTimeInterval interval, Object target, SEL action, Object userInfo,
                       bool repeats) {
    return send<"timerWithTimeInterval:target:selector:userInfo:repeats:", NSTimer>(
        cls(), interval, target, action, userInfo, repeats);
  }

  Object userInfo() const { return send<"userInfo", Object>(*this); }  // borrowed
  void invalidate() const { send<"invalidate">(*this); }
};

}  // namespace platform
