#include "Saving.h"

#include <chrono>
#include <ostream>

#include "Outputs.h"
#include "PrintableText.h"
#include "StoreFailure.h"
#include "Threads.h"

namespace tool {
namespace {

// A file of its own may be read by nobody who may not read the configuration, which has passwords in it.
unsigned permissionsAt(const cfgstore::ConfigStore& store, const std::string& target, unsigned permissions) {
  return target == store.path() ? permissions : permissions & (store.permissions() | 0600U);
}

void tellNothingToDo(const std::string& target, Console& console) {
  console.out << "Nothing to do: " << ldtr::printable(target) << " holds the result already.\n";
}

}  // namespace

cfgstore::SaveResult saveTo(cfgstore::ConfigStore& store, const std::string& target, unsigned permissions) {
  const HeldSignals signals;
  return asFailure(
      [&] { return store.save(target, cfgstore::Backup::keep, permissionsAt(store, target, permissions)); });
}

EarlySave::EarlySave(cfgstore::ConfigStore& store, const std::string& target, unsigned permissions) {
  store.pieces();  // what is to be written is put together here, and not in two threads at once
  m_ahead = cfgstore::doBeside(store.textAsRead().size(), [&store, target, permissions] {
              return std::make_unique<cfgstore::SaveAhead>(store, target, permissionsAt(store, target, permissions));
            }).share();
}

cfgstore::SaveResult EarlySave::finish() {
  return asFailure([this] { return m_ahead.get()->finish(cfgstore::Backup::keep); });
}

std::string EarlySave::recoveredPath() const {
  if (m_ahead.wait_for(std::chrono::seconds(0)) == std::future_status::deferred) return {};
  try {
    return m_ahead.get()->recoveredPath();
  } catch (const cfgstore::SaveError&) {
    return {};  // refused, mostly before anything was touched
  }
}

bool wouldSave(const cfgstore::ConfigStore& store, const std::string& target, unsigned permissions) {
  return asFailure([&] { return store.checkSave(target, permissionsAt(store, target, permissions)); });
}

ExitStatus tellSaved(const cfgstore::SaveResult& saved, const std::string& target, const std::string& shortcoming,
                     Console& console) {
  const ExitStatus status = shortcoming.empty() ? ExitStatus::done : ExitStatus::lost;
  if (!saved.recoveredPath.empty()) {
    console.out << "  kept     " << ldtr::printable(saved.recoveredPath) << ", which an interrupted run had replaced\n";
  }
  if (!saved.written) {
    tellNothingToDo(target, console);
    return status;
  }
  if (!saved.backupPath.empty()) console.out << "  backup   " << ldtr::printable(saved.backupPath) << '\n';
  console.out << "Written: " << ldtr::printable(target) << (shortcoming.empty() ? "" : ", ") << shortcoming << ".\n";
  return missingOutputs(console).empty() ? status : ExitStatus::lost;
}

ExitStatus tellPreview(const cfgstore::ConfigStore& store, const std::string& target, Console& console) {
  if (!wouldSave(store, target)) {
    tellNothingToDo(target, console);
  } else {
    console.out << "Preview: nothing was written; the result would go to " << ldtr::printable(target) << ".\n";
  }
  return ExitStatus::done;
}

}  // namespace tool
