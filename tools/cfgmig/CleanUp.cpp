#include "CleanUp.h"

#include <algorithm>
#include <new>

#include "EntryReading.h"
#include "PrintableText.h"
#include "StoreCodes.h"

namespace tool {
namespace {

using cfgstore::Operation;

constexpr CleanUpOperation kOperations[] = {
    {"--database", "removeDBInfo", &ConfigFile::removeDBInfo},
    {"--instance", "removeDBInstInfo", &ConfigFile::removeDBInstInfo},
    {"--change-log", "removeCLInfo", &ConfigFile::removeCLInfo},
    {"--rewrite-plugins", "editCLInfo", &ConfigFile::editCLInfo},
};

constexpr int kNoSuchAttribute = 16;
constexpr int kNoSuchEntry = 32;

bool isAbsence(int rc) { return rc == kNoSuchAttribute || rc == kNoSuchEntry; }

std::string codeText(int rc) { return "code " + std::to_string(rc) + " (" + storeCodeText(rc) + ")"; }

// A refused write is a failure, but for two that say that there was nothing to remove: the entry of the change log is
// not there; a definition that has just been replaced is to be replaced once more, after which the method goes on.
bool isHarmless(const RecordedWrite& write, bool isLast) {
  if (write.operation == Operation::removeEntry) return write.rc == kNoSuchEntry;
  return write.operation == Operation::delValue && write.rc == kNoSuchAttribute && !isLast;
}

std::string failureOf(const CleanUpOperation& operation, const RecordedWrite& write) {
  std::string text = std::string(operation.method) + ": " + operationName(write.operation);
  if (!write.attribute.empty()) text += " of " + ldtr::printable(write.attribute);
  return text + " at " + ldtr::printableDn(write.entry) + ": " + codeText(write.rc);
}

CleanUpStep& stepFor(std::vector<CleanUpStep>& steps, CleanUpStep::Kind kind, const RecordedWrite& write) {
  const auto same = [&](const CleanUpStep& step) {
    return step.kind == kind && step.entry == write.entry && step.attribute == write.attribute;
  };
  const auto found = std::find_if(steps.begin(), steps.end(), same);
  if (found != steps.end()) return *found;
  return steps.emplace_back(CleanUpStep{kind, write.entry, write.attribute});
}

}  // namespace

std::span<const CleanUpOperation> cleanUpOperations() { return kOperations; }

CleanUpResult judge(const CleanUpOperation& operation, const std::vector<RecordedWrite>& writes, int result) {
  CleanUpResult judged;
  bool isInPlace = false;  // the next write puts a value in the place of the one that was removed last
  for (std::size_t i = 0; i < writes.size(); ++i) {
    const RecordedWrite& write = writes[i];
    if (write.rc != 0) {
      if (judged.failure.empty() && !isHarmless(write, i + 1 == writes.size())) {
        judged.failure = failureOf(operation, write);
      }
      continue;
    }
    if (write.operation == Operation::removeEntry) {
      stepFor(judged.steps, CleanUpStep::Kind::removedEntry, write);
    } else if (write.operation == Operation::delValue && write.changed) {
      isInPlace = i + 1 < writes.size() && writes[i + 1].operation == Operation::addValue;
      if (!isInPlace) {
        stepFor(judged.steps, CleanUpStep::Kind::removedValues, write).count += write.values;
      }
    } else if (write.operation == Operation::addValue && (isInPlace || write.changed)) {
      ++stepFor(judged.steps, CleanUpStep::Kind::rewrittenValues, write).count;
      isInPlace = false;
    }
  }
  // Without a refused write, a code is that of the read that was to tell what there is to remove.
  if (judged.failure.empty() && result != 0 && !isAbsence(result)) {
    judged.failure = std::string(operation.method) + ": a setting cannot be read: " + codeText(result);
  }
  return judged;
}

CleanUpResult cleanUp(ConfigFile& configuration, const CleanUpOperation& operation) {
  cfgstore::ConfigStore& store = cfgstore::ConfigStore::of(*configuration.getCfgUtils());
  std::vector<RecordedWrite> writes;
  bool isIncomplete = false;
  store.observe([&](const cfgstore::Write& write) {
    try {
      writes.push_back({write.operation, std::string(write.dn), std::string(write.attribute), write.values.size(),
                        write.rc, write.changed});
    } catch (const std::bad_alloc&) {
      isIncomplete = true;
    }
  });
  int result = 0;
  try {
    result = (configuration.*operation.run)();
  } catch (...) {
    store.observe({});
    throw;
  }
  store.observe({});
  if (isIncomplete) throw std::bad_alloc();

  CleanUpResult judged = judge(operation, writes, result);
  for (CleanUpStep& step : judged.steps) {
    if (step.attribute.empty()) continue;
    step.remaining = valuesOf(*configuration.getCfgUtils(), step.entry, step.attribute).size();
  }
  return judged;
}

}  // namespace tool
