// Content.h -- the three configurations that a ledger is about.

#ifndef CFGMIG_TOOL_REPORT_CONTENT_H
#define CFGMIG_TOOL_REPORT_CONTENT_H

#include <cstddef>
#include <cstdint>

#include "ledger/Ledger.h"

namespace tool {

enum class Content : std::uint8_t {
  old,     // the old configuration, before the merge
  before,  // the new configuration, before the merge
  result,  // the new configuration, after it
};
inline constexpr std::size_t kContents = 3;

inline const char* nameOf(Content content) {
  return content == Content::old ? "old" : content == Content::before ? "before" : "result";
}

inline const cfgstore::Snapshot& snapshotOf(const Ledger& ledger, Content content) {
  return content == Content::old ? ledger.old : content == Content::before ? ledger.before : ledger.result;
}

// Whether a value of the result came from the old configuration.
inline bool isFromOld(const ResultValueRow& row) {
  return row.origin == ValueOrigin::carried || row.origin == ValueOrigin::moved;
}

}  // namespace tool

#endif  // CFGMIG_TOOL_REPORT_CONTENT_H
