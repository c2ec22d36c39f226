#include "migration/SelfCheck.h"

#include <memory>

#include "ConfigStore.h"
#include "Configuration.h"
#include "EqualEntries.h"
#include "Failure.h"
#include "PrintableText.h"
#include "Snapshot.h"
#include "audit/Audit.h"

namespace tool {
namespace {

std::string lineOf(const Discrepancy& discrepancy) {
  std::string line = "in " + ldtr::printable(discrepancy.dn);
  if (!discrepancy.attribute.empty()) line += ", " + ldtr::printable(discrepancy.attribute);
  return line + ": " + wordsFor(discrepancy.kind);
}

}  // namespace

std::vector<std::string> selfCheck(const Ledger& ledger, const cfgstore::ConfigStore& merged,
                                   const std::string& resultPath, const std::string& schemaTarget) {
  std::unique_ptr<cfgstore::ConfigStore> store;
  try {
    store = openStore(resultPath);
  } catch (const Failure& failure) {
    return failure.lines();
  }
  std::vector<std::string> lines;
  for (const std::string_view dn : cfgstore::setAsideLike(merged, *store)) {
    lines.push_back("in " + ldtr::printableDn(dn) +
                    ": there is something else than before, though nothing writes there");
  }
  if (!lines.empty()) return lines;
  const cfgstore::Snapshot result(*store);
  const Audit found = audit(ledger.old, ledger.before, result, ledger.sourceVersion, schemaTarget);
  // A write that was refused is a discrepancy as well as a loss, and no fault when the ledger has it.
  lines = compareWithLedger(found, ledger);
  for (const Discrepancy& discrepancy : found.discrepancies) {
    if (!discrepancy.mayBeLoss()) lines.push_back(lineOf(discrepancy));
  }
  return lines;
}

}  // namespace tool
