// Unfolded.h -- the values of an entry that was set aside before the merge, for as long as somebody writes of it.
//
// Nearly all entries of two configurations are the same, and are only counted (SettledEntries.h). A report that tells
// of every value unfolds them one at a time, so that they never stand in memory together.

#ifndef CFGMIG_TOOL_REPORT_UNFOLDED_H
#define CFGMIG_TOOL_REPORT_UNFOLDED_H

#include <cstdint>

#include "report/Content.h"

namespace tool {

// While it lives, the entry is in the three snapshots of the ledger with all its attributes and values, and in its
// lists with a row for each: the values are the same in all three. For an entry that was not set aside, and for the
// number kNone, nothing is done. No two may live at a time.
class Unfolded {
 public:
  Unfolded(const Ledger& ledger, Content content, std::uint32_t entry);
  ~Unfolded();
  Unfolded(const Unfolded&) = delete;
  Unfolded& operator=(const Unfolded&) = delete;

 private:
  void addRows();

  const Ledger& m_ledger;
  std::size_t m_oldValues;
  std::size_t m_resultValues;
};

}  // namespace tool

#endif  // CFGMIG_TOOL_REPORT_UNFOLDED_H
