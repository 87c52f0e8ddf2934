// AppList, an add-on that may be absent: looked up at each use. Stands in for its header; leaves
// out filters, single values of an app, and the notification that an icon has come.
#pragma once
#include "platform/foundation.hpp"

namespace platform {

struct ALApplicationList : Object {
  // Nil where AppList is not installed.
  static ClassObject cls() { return classNamed<"ALApplicationList">(); }
  static ALApplicationList sharedApplicationList(ClassObject cls) {
    return send<"sharedApplicationList", ALApplicationList>(cls);
  }
  // Where AppList is not loaded by itself.
  static constexpr const char* kLibrary = "/usr/lib/libapplist.dylib";

  // Display names by bundle identifier; outside of SpringBoard nil if that does not answer.
  NSDictionary applications() const { return send<"applications", NSDictionary>(*this); }
  // The bundle identifiers of the apps that the home screen shows, by their names. Autoreleased;
  // nil as above.
  NSArray identifiersSortedByTitle() const {
    NSArray sorted;
    send<"applicationsFilteredUsingPredicate:onlyVisible:titleSortedIdentifiers:", Object>(
        *this, Object{}, true, &sorted.raw);
    return sorted;
  }
  // Waits for SpringBoard unless it is known already; may be nil. Borrowed.
  Object iconOfSize(NSUInteger points, NSString identifier) const {
    return send<"iconOfSize:forDisplayIdentifier:", Object>(*this, points, identifier);
  }
};

}  // namespace platform
