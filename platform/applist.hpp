// AppList, an add-on that may be absent: looked up at each use.
#pragma once
#include "platform/foundation.hpp"

namespace platform {

struct ALApplicationList : Object {
  // Nil where AppList is not installed.
  static ClassObject cls() { return classNamed<"ALApplicationList">(); }
  static ALApplicationList sharedApplicationList(ClassObject cls) {
    return send<"sharedApplicationList", ALApplicationList>(cls);
  }
  // Display names by bundle identifier.
  NSDictionary applications() const { return send<"applications", NSDictionary>(*this); }
};

}  // namespace platform
