// MergeRecorder.h -- listens to a merge on behalf of its account.

#ifndef CFGMIG_TOOL_MERGERECORDER_H
#define CFGMIG_TOOL_MERGERECORDER_H

#include <cstdint>
#include <exception>

#include "ConfigFile.h"
#include "ConfigStore.h"
#include "MergeAccount.h"

namespace tool {

// From its making to its end, the trace records that the account needs are enabled (besides what was enabled before)
// and, with every write to the two stores, are handed to `account`. All arguments must outlive it.
// A failure of the account stops nothing: it is kept, and rethrown by check.
class MergeRecorder {
 public:
  MergeRecorder(MergeAccount& account, ConfigFile& oldConfiguration, ConfigFile& newConfiguration);
  ~MergeRecorder();
  MergeRecorder(const MergeRecorder&) = delete;
  MergeRecorder& operator=(const MergeRecorder&) = delete;

  // Trace records are heard no more and enabled as they were before; writes still are.
  void endRecords();

  // Rethrows the failure of the account, if there was one.
  void check() const;

 private:
  template <class Step>
  void guarded(Step&& step) noexcept;
  void observe(cfgstore::ConfigStore& store, Side side);

  MergeAccount& m_account;
  cfgstore::ConfigStore& m_old;
  cfgstore::ConfigStore& m_new;
  std::uint32_t m_eventsBefore;
  bool m_hearsRecords = true;
  std::exception_ptr m_failure;
};

}  // namespace tool

#endif  // CFGMIG_TOOL_MERGERECORDER_H
