// MethodNames.cpp -- the trace identifiers of the library's methods.
//
// An identifier is 0x5101NN00; NN, the method's ordinal, is its place in the table.

#include <cstddef>
#include <iterator>

#include "TraceControl.h"

namespace ldtr {
namespace {

constexpr unsigned long kLibrary = 0x51010000;

constexpr const char* kMethods[] = {
    "getDns",                   // 0x51010100
    "compareConfigFiles",       // 0x51010200
    "compareEntries",           // 0x51010300
    "removeDn",                 // 0x51010400
    "mergeConfigFiles",         // 0x51010500
    "additionalChecks",         // 0x51010600
    "processNewEntry",          // 0x51010700
    "processUpdatedEntry",      // 0x51010800
    "addTo41",                  // 0x51010900
    "addTo51",                  // 0x51010a00
    "addTo52",                  // 0x51010b00
    "addTo60",                  // 0x51010c00
    "check41",                  // 0x51010d00
    "check51",                  // 0x51010e00
    "check52",                  // 0x51010f00
    "check60",                  // 0x51011000
    "mergeIn41",                // 0x51011100
    "mergeIn51",                // 0x51011200
    "mergeIn52",                // 0x51011300
    "mergeIn60",                // 0x51011400
    "addCfgEntry",              // 0x51011500
    "mergeCfgEntry",            // 0x51011600
    "mergeChangeDnEntry",       // 0x51011700
    "replAddEntry",             // 0x51011800
    "isMultiVal",               // 0x51011900
    "removeDBInfo",             // 0x51011a00
    "removeCLInfo|editCLInfo",  // 0x51011b00; intended: the two share it
    "removeDBInstInfo",         // 0x51011c00
    "processPlugins",           // 0x51011d00
    "isOVOFile",                // 0x51011e00
    "checkSchemaFiles",         // 0x51011f00
    "processIncSchema",         // 0x51012000
    "pluginCmp",                // 0x51012100
};

}  // namespace

const char* methodName(unsigned long identifier) {
  const unsigned long ordinal = (identifier >> 8) & 0xff;
  const bool known = ordinal >= 1 && ordinal <= std::size(kMethods) && identifier == (kLibrary | (ordinal << 8));
  return known ? kMethods[ordinal - 1] : nullptr;
}

}  // namespace ldtr
