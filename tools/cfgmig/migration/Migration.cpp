#include "migration/Migration.h"

#include <unistd.h>

#include <algorithm>
#include <chrono>
#include <ctime>
#include <filesystem>
#include <span>

#include "Configuration.h"
#include "Failure.h"
#include "PrintableText.h"
#include "SettledEntries.h"
#include "SourceVersion.h"
#include "Threads.h"
#include "TracedMethod.h"
#include "migration/Fingerprint.h"

namespace tool {
namespace {

template <class Made>
bool isMade(const std::shared_future<Made>& made) {
  return made.wait_for(std::chrono::seconds(0)) == std::future_status::ready;
}

// Every value has to be accounted for before anything is written. What does not add up is an error of this program.
void refuseUnlessItAddsUp(const Ledger& ledger) {
  std::vector<std::string> errors = sumErrors(ledger);
  if (errors.empty()) return;
  errors.insert(errors.begin(), "the account of the migration does not add up; this is an error of cfgmig");
  throw Failure(ExitStatus::failed, errors);
}

}  // namespace

std::string timeNow() {
  const std::time_t now = std::time(nullptr);
  std::tm parts{};
  ::gmtime_r(&now, &parts);
  char text[sizeof "2026-11-21T09:14:00Z"];
  std::strftime(text, sizeof text, "%Y-%m-%dT%H:%M:%SZ", &parts);
  return text;
}

Migration::Migration(MigrationRequest request) : m_request(std::move(request)) {
  std::vector<std::string> problems;
  OpenPair opened = openConfigurations(m_request.oldPath, m_request.newPath, problems, Learns::habits);
  m_old = std::move(opened.old);
  m_new = std::move(opened.now);
  if (!problems.empty()) throw Failure(ExitStatus::failed, problems);
  m_inputs = inputsHashed(false);
  m_fingerprints = fingerprints(false);
  if (m_request.schemas) refuseTraceInSchemaFiles(m_request.traceFile, *m_request.schemas, {m_old.get(), m_new.get()});
}

// What a summary says of them needs no SHA-256.
Migration::Inputs Migration::inputsUnhashed() const {
  const auto input = [](const char* role, const std::string& path, std::string_view text) {
    return InputFile{role, std::filesystem::absolute(path).string(), {}, text.size()};
  };
  return {input("old", m_request.oldPath, oldStore().textAsRead()),
          input("new", m_request.newPath, newStore().textAsRead())};
}

std::shared_future<Migration::Inputs> Migration::inputsHashed(bool isAtOnce) const {
  const auto make = [oldPath = m_request.oldPath, newPath = m_request.newPath, oldText = oldStore().textAsRead(),
                     newText = newStore().textAsRead()] {
    return Inputs{inputOf("old", oldPath, oldText), inputOf("new", newPath, newText)};
  };
  const std::size_t size = oldStore().textAsRead().size() + newStore().textAsRead().size();
  return cfgstore::doBeside(isAtOnce ? size : 0, make).share();
}

std::shared_future<Migration::Fingerprints> Migration::fingerprints(bool isAtOnce) const {
  const std::string_view oldText = oldStore().textAsRead();
  const std::string_view newText = newStore().textAsRead();
  const auto make = [oldText, newText] { return Fingerprints{fingerprint(oldText), fingerprint(newText)}; };
  return cfgstore::doBeside(isAtOnce ? oldText.size() + newText.size() : 0, make).share();
}

std::vector<std::string> Migration::staleInputs() const {
  std::vector<std::string> lines;
  if (!m_request.plan) return lines;
  const auto check = [&](const InputFile& planned, const InputFile& found) {
    if (planned.sha256 == found.sha256) return;
    lines.push_back(ldtr::printable(found.path) + ": is not what the plan of " + m_request.plan->time +
                    " was made from");
  };
  check(m_request.plan->oldFile, oldInput());
  check(m_request.plan->newFile, newInput());
  return lines;
}

void Migration::merge(std::vector<std::string>& warnings) {
  setSettledEntriesAsideUnlessTraced(oldStore(), newStore());
  auto newInventory = readInventoryBeside(*m_new);
  readInventory(*m_old);
  const SourceVersion source = sourceVersionOf(*m_old->getCfgUtils(), m_request.oldPath, m_request.version);
  warnings.insert(warnings.end(), source.warnings.begin(), source.warnings.end());
  m_sourceVersion = source.version;
  m_recognisedFrom = source.from;
  newInventory.get();

  LedgerBuilder& builder = m_builder.emplace(*m_old, *m_new, source.version);
  // They may have been made already, to see whether a plan is stale or was carried out.
  if (!m_request.onlySums && !isMade(m_inputs)) m_inputs = inputsHashed(true);
  if (m_willBeWritten && !isMade(m_fingerprints)) m_fingerprints = fingerprints(true);
  if (m_willBeWritten) m_check.emplace(builder.begun(), newStore(), m_request.schemas ? m_request.schemas->target : "");
  builder.merge();
  if (m_request.schemas) {
    builder.cleanUpBy(traced::kCheckSchemaFiles);
    m_schemas.emplace(*m_new, *m_request.schemas);
    const NamedFile notToReplace[] = {{m_request.oldPath, "the old configuration"},
                                      {m_request.newPath, "the new configuration"},
                                      {m_request.target, "the output"},
                                      {m_request.planPath, "the plan"}};
    m_schemas->refuseToReplace(notToReplace);
  }
  if (m_check) m_check->begin();
}

void Migration::account() {
  m_ledger = m_builder->finish();
  m_builder.reset();
  auto findings = cfgstore::doBeside(newStore().textAsRead().size(), [this] {
    return findAll(*m_ledger, {[this](const std::string& path) { return fileWillExist(path); }});
  });
  refuseUnlessItAddsUp(*m_ledger);
  m_findings = findings.get();
  if (m_request.onlySums) {
    // Only a report tells of writes; the check of the result asks for those that were refused.
    std::erase_if(m_ledger->events, [](const LedgerEvent& event) { return event.rc == 0; });
    m_ledger->events.shrink_to_fit();
    if (m_ledger->events.empty()) m_ledger->memory.reset();
  }
  if (m_check) m_check->compare();
}

std::vector<std::string> Migration::faultsOfResult() { return m_check->faultsOf(m_request.target); }

bool Migration::fileWillExist(const std::string& path) const {
  if (m_schemas) {
    const auto& copies = m_schemas->copies();
    if (std::any_of(copies.begin(), copies.end(),
                    [&](const cfgstore::StagedCopy& copy) { return copy.isStaged() && copy.destination == path; })) {
      return true;
    }
  }
  return ::access(path.c_str(), F_OK) == 0;
}

Report Migration::report(bool showSecrets) const {
  Report report(*m_ledger, showSecrets);
  report.findings = m_findings;
  report.toolVersion = CFGMIG_VERSION;
  report.time = timeNow();
  report.recognisedFrom = m_recognisedFrom;
  report.inputs = m_request.onlySums ? inputsUnhashed() : m_inputs.get();
  report.options.from = m_request.plan ? m_request.plan->options.from : m_request.version;
  report.options.target = std::filesystem::absolute(m_request.target).string();
  if (m_request.schemas) {
    report.options.schemas = {std::filesystem::absolute(m_request.schemas->search).string(), m_request.schemas->target};
  }
  if (m_schemas) report.outcome.schemas = schemaFilesOf(*m_schemas, true);
  report.planPath = m_request.planPath;
  return report;
}

std::vector<SchemaFile> schemaFilesOf(const SchemaCopies& copies, bool isPlan) {
  using Found = cfgstore::FileCopy::Found;
  std::vector<SchemaFile> files;
  for (const cfgstore::StagedCopy& copy : copies.copies()) {
    SchemaFile file;
    file.source = copy.source;
    file.destination = copy.destination;
    file.backup = copy.backupPath;
    file.why = copy.refusal;
    file.fate = !copy.isStaged()                   ? SchemaFile::Fate::notCopied
                : copy.found == Found::sameContent ? SchemaFile::Fate::present
                : isPlan                           ? SchemaFile::Fate::toCopy
                                                   : SchemaFile::Fate::copied;
    files.push_back(std::move(file));
  }
  for (const std::string& name : copies.missing()) {
    SchemaFile file;
    file.source = name;
    files.push_back(std::move(file));
  }
  return files;
}

}  // namespace tool
