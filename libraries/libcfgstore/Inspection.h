// Inspection.h -- everything that is wrong with an LDIF file, and what is legal but suspicious, in one run.
//
// For an administrator who is to trust a file, or is to mend one that does not open. Opening a store and inspecting its
// file always agree: a file opens exactly when its inspection finds no error.

#ifndef CFGMIG_LIBCFGSTORE_INSPECTION_H
#define CFGMIG_LIBCFGSTORE_INSPECTION_H

#include <cstddef>
#include <string>
#include <vector>

#include "RemarkKind.h"

namespace cfgstore {

// One thing to know about a file. The text says what is wrong and what was expected, or how it was understood. It holds
// no value, no comment and no bytes below a blank; names only if they are valid, and DNs on one line and shortened.
struct Remark {
  std::size_t line = 0;  // counted from 1 as an editor counts; 0 is the file as a whole
  RemarkKind kind{};
  std::string text;
};

struct RemarkCount {
  RemarkKind kind{};
  std::size_t found = 0;  // at least 1
  std::size_t shown = 0;  // how many of them are among the remarks
};

struct Inspection {
  std::vector<Remark> remarks;      // in the order of their lines, on one line in that of their kinds
  std::vector<RemarkCount> counts;  // one for each kind that was found, in the order of the enumeration
  std::size_t errors = 0;           // all that were found, shown or not
  std::size_t warnings = 0;
  std::size_t entries = 0;  // how many the file has, as far as it could be read
  std::size_t values = 0;   // repeated ones included
};

struct InspectionLimits {
  std::size_t mostPerKind = 100;  // remarks that are shown of each kind; all are counted
};

// Reads the file at `path`, which may be a pipe, and judges it. A file that cannot be read has one remark, of kind
// unreadable or fileTooLarge. Takes time and memory in proportion to the file, but for sorting the values of attributes
// that have many. Throws std::bad_alloc and nothing else.
Inspection inspect(const std::string& path, const InspectionLimits& limits = {});

}  // namespace cfgstore

#endif  // CFGMIG_LIBCFGSTORE_INSPECTION_H
