// The simulated classes of Foundation and CoreFoundation: a function each, for
// sim/platform/class_list.cpp. Leaves out the classes themselves, which stand in the files named
// after them.
#pragma once
#include "sim/core/class_definition.hpp"

namespace sim {

ClassDefinition defineNSObject();
ClassDefinition defineBlock();
ClassDefinition defineNSString();
ClassDefinition defineNSNumber();
ClassDefinition defineNSData();
ClassDefinition defineNSDate();
ClassDefinition defineNSArray();
ClassDefinition defineNSMutableArray();
ClassDefinition defineNSDictionary();
ClassDefinition defineNSMutableDictionary();
ClassDefinition defineNSTimer();
ClassDefinition defineNSURL();
ClassDefinition defineNSBundle();
ClassDefinition defineBundlesByPath();
ClassDefinition defineNSPredicate();
ClassDefinition defineNSFileManager();

}  // namespace sim
