#include "migration/SelfCheck.h"

#include <chrono>
#include <future>
#include <optional>
#include <string_view>
#include <utility>

#include "ConfigStore.h"
#include "Configuration.h"
#include "EqualEntries.h"
#include "Failure.h"
#include "LeftOpen.h"
#include "PrintableText.h"
#include "Snapshot.h"
#include "Threads.h"
#include "audit/Audit.h"

namespace tool {
namespace {

std::string lineOf(const Discrepancy& discrepancy) {
  std::string line = "in " + ldtr::printable(discrepancy.dn);
  if (!discrepancy.attribute.empty()) line += ", " + ldtr::printable(discrepancy.attribute);
  return line + ": " + wordsFor(discrepancy.kind);
}

// A result that was read, and what the audit says of it.
struct Examined {
  std::unique_ptr<cfgstore::ConfigStore> store;
  std::vector<std::string_view> changed;  // DNs of entries that were set aside and are not the same any more
  std::optional<cfgstore::Snapshot> content;
  std::optional<Audit> audit;  // unless there are such entries
};

Examined examine(std::unique_ptr<cfgstore::ConfigStore> store, const cfgstore::ConfigStore& merged, Auditor& auditor,
                 const std::string& schemaTarget) {
  Examined examined;
  examined.store = std::move(store);
  examined.changed = cfgstore::setAsideLike(merged, *examined.store);
  if (!examined.changed.empty()) return examined;
  examined.content.emplace(*examined.store);
  examined.audit = auditor.audit(*examined.content, schemaTarget);
  return examined;
}

std::vector<std::string> faultsIn(const Examined& examined, const Ledger& ledger) {
  std::vector<std::string> lines;
  for (const std::string_view dn : examined.changed) {
    lines.push_back("in " + ldtr::printableDn(dn) +
                    ": there is something else than before, though nothing writes there");
  }
  if (!lines.empty()) return lines;
  // A write that was refused is a discrepancy as well as a loss, and no fault when the ledger has it.
  lines = compareWithLedger(*examined.audit, ledger);
  for (const Discrepancy& discrepancy : examined.audit->discrepancies) {
    if (!discrepancy.mayBeLoss()) lines.push_back(lineOf(discrepancy));
  }
  return lines;
}

}  // namespace

std::vector<std::string> selfCheck(const Ledger& ledger, const cfgstore::ConfigStore& merged,
                                   const std::string& resultPath, const std::string& schemaTarget) {
  try {
    Auditor auditor(ledger.old, ledger.before, ledger.sourceVersion);
    return faultsIn(examine(openStoreLike(resultPath, merged), merged, auditor, schemaTarget), ledger);
  } catch (const Failure& failure) {
    return failure.lines();
  }
}

// The futures come last, so that whatever is still done is done before anything else goes.
struct EarlySelfCheck::State {
  std::shared_ptr<const Ledger> ledger;
  cfgstore::ConfigStore& merged;
  std::string schemaTarget;
  std::vector<std::string_view> text;
  std::future<Auditor> auditor;
  std::future<Examined> examined;
  std::future<std::optional<std::vector<std::string>>> faults;

  // Nothing when the text cannot be read, or is not what it should be: the file itself is to tell that.
  std::optional<std::vector<std::string>> faultsOfText() {
    try {
      auto result = std::make_unique<Examined>(examined.get());
      if (!result->changed.empty()) return std::nullopt;
      std::vector<std::string> lines = faultsIn(*result, *ledger);
      leaveOpen(result, merged.textAsRead().size());
      return lines;
    } catch (const cfgstore::OpenError&) {
      return std::nullopt;
    }
  }
};

EarlySelfCheck::EarlySelfCheck(std::shared_ptr<const Ledger> ledger, cfgstore::ConfigStore& merged,
                               std::string schemaTarget)
    : m_state(std::make_unique<State>(State{std::move(ledger), merged, std::move(schemaTarget), {}, {}, {}, {}})) {
  m_state->auditor = cfgstore::doBeside(merged.textAsRead().size(), [&state = *m_state] {
    return Auditor(state.ledger->old, state.ledger->before, state.ledger->sourceVersion);
  });
}

EarlySelfCheck::~EarlySelfCheck() = default;

void EarlySelfCheck::begin() {
  m_state->text = m_state->merged.pieces();
  m_state->examined = cfgstore::doBeside(m_state->merged.textAsRead().size(), [&state = *m_state] {
    Auditor auditor = state.auditor.get();
    return examine(cfgstore::readAsSaved(state.merged), state.merged, auditor, state.schemaTarget);
  });
}

void EarlySelfCheck::compare() {
  auto& faults = m_state->faults;
  faults =
      cfgstore::doBeside(m_state->merged.textAsRead().size(), [&state = *m_state] { return state.faultsOfText(); });
  if (faults.wait_for(std::chrono::seconds(0)) != std::future_status::deferred) return;
  // No thread does it: it is done now, so that what it fails for is told while nothing is in place yet.
  std::promise<std::optional<std::vector<std::string>>> done;
  done.set_value(faults.get());
  faults = done.get_future();
}

std::vector<std::string> EarlySelfCheck::faultsOf(const std::string& resultPath) {
  State& state = *m_state;
  if (cfgstore::holdsText(resultPath, state.text)) {
    if (std::optional<std::vector<std::string>> faults = state.faults.get()) return std::move(*faults);
  }
  return selfCheck(*state.ledger, state.merged, resultPath, state.schemaTarget);
}

}  // namespace tool
