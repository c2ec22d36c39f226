#include "MergeRecorder.h"

#include "TraceControl.h"

namespace tool {

MergeRecorder::MergeRecorder(MergeAccount& account, ConfigFile& oldConfiguration, ConfigFile& newConfiguration)
    : m_account(account),
      m_old(cfgstore::ConfigStore::of(*oldConfiguration.getCfgUtils())),
      m_new(cfgstore::ConfigStore::of(*newConfiguration.getCfgUtils())),
      m_eventsBefore(ldtr::events()) {
  observe(m_old, Side::oldConfiguration);
  observe(m_new, Side::newConfiguration);
  ldtr::sendAlsoTo([this](const ldtr::Record& record) { guarded([&] { m_account.record(record); }); });
  ldtr::setEvents(m_eventsBefore | ldtr::kPublicEntry | ldtr::kInternalEntry | ldtr::kDebug);
}

MergeRecorder::~MergeRecorder() {
  endRecords();
  m_new.observe({});
  m_old.observe({});
}

void MergeRecorder::endRecords() {
  if (!m_hearsRecords) return;
  m_hearsRecords = false;
  ldtr::setEvents(m_eventsBefore);
  ldtr::sendAlsoTo({});
}

void MergeRecorder::check() const {
  if (m_failure) std::rethrow_exception(m_failure);
}

template <class Step>
void MergeRecorder::guarded(Step&& step) noexcept {
  if (m_failure) return;
  try {
    step();
  } catch (...) {
    m_failure = std::current_exception();
  }
}

void MergeRecorder::observe(cfgstore::ConfigStore& store, Side side) {
  store.observe([this, side](const cfgstore::Write& write) { guarded([&] { m_account.write(side, write); }); });
}

}  // namespace tool
