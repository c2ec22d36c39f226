#include "MergeAccount.h"

#include <charconv>
#include <iterator>
#include <stdexcept>
#include <unordered_map>
#include <utility>

#include "PrintableText.h"
#include "StoreCodes.h"
#include "TracedMethod.h"

namespace tool {
namespace {

using cfgstore::Operation;
using cfgstore::Write;

// A setting that the old configuration lacks has a null value and an empty list: there was nothing to carry.
bool hasNothingToCarry(const Write& write) {
  return write.values.empty() && write.operation != Operation::addEntry && write.operation != Operation::removeEntry;
}

// How many values a write that has changed the content has put there. An entry with one object class is created with
// that class twice when the class is the one that all entries have.
std::size_t valuesOf(const Write& write) {
  if (write.operation != Operation::addEntry) return 1;
  const bool sameClass = write.values.size() == 3 && write.values[1] == write.values[2];
  return write.values.size() - (sameClass ? 1 : 0);
}

std::string methodText(unsigned long identifier) {
  const char* name = ldtr::methodName(identifier);
  return name == nullptr ? std::string() : name;
}

// A message without the name of the method that it begins with, and without its newline.
std::string_view withoutMethod(std::string_view message) {
  if (message.ends_with('\n')) message.remove_suffix(1);
  const std::size_t colon = message.find(": ");
  return colon == std::string_view::npos ? message : message.substr(colon + 2);
}

// The store's code in a message of the library: the number behind "rc=".
std::optional<int> codeIn(std::string_view message) {
  constexpr std::string_view kMark = "rc=";
  const std::size_t mark = message.find(kMark);
  if (mark == std::string_view::npos) return std::nullopt;
  int code = 0;
  const char* const begin = message.data() + mark + kMark.size();
  const auto [stopped, error] = std::from_chars(begin, message.data() + message.size(), code);
  return error == std::errc() && stopped != begin ? std::optional<int>(code) : std::nullopt;
}

[[noreturn]] void doesNotFit(const std::string& what) {
  throw std::logic_error("the account of the merge does not fit: " + what);
}

}  // namespace

MergeAccount::MergeAccount(Inventory oldEntries, const Inventory& newEntries, const cfgstore::Snapshot* old)
    : m_old(std::move(oldEntries)), m_events(old != nullptr ? *old : m_noSnapshot) {
  if (old != nullptr) {
    m_numbers.reserve(m_old.size());
    for (const std::string& dn : m_old) m_numbers.push_back(old->findEntry(dn));
  }
  std::unordered_map<std::string_view, std::size_t> copies;
  copies.reserve(newEntries.size());
  for (const std::string& dn : newEntries) ++copies[dn];
  for (std::size_t i = 0; i < m_old.size(); ++i) {
    const auto found = copies.find(m_old[i]);
    if (found == copies.end()) {
      m_newEntries.push_back(i);
    } else {
      m_commonEntries.insert(m_commonEntries.end(), found->second, i);
    }
  }
  m_fates.resize(m_old.size());
}

void MergeAccount::record(const ldtr::Record& record) {
  switch (record.kind) {
    case ldtr::RecordKind::entry:
      enter(record.identifier);
      break;
    case ldtr::RecordKind::exit:
      leave(record.identifier, record.result);
      break;
    case ldtr::RecordKind::debug:
      message(record);
      break;
  }
}

void MergeAccount::enter(unsigned long identifier) {
  m_methods.push_back(identifier);
  m_droppedValue.reset();  // a rule moves a value by itself
  m_events.forgetTaken();
  if (m_work.phase != Phase::none && m_work.told.rule == 0) m_work.told.rule = identifier;
  if (identifier == traced::kProcessNewEntry) begin(Phase::newEntry);
  if (identifier == traced::kProcessUpdatedEntry) begin(Phase::commonEntry);
}

void MergeAccount::leave(unsigned long identifier, long result) {
  if (m_methods.empty() || m_methods.back() != identifier) doesNotFit("a method was left that was not entered");
  m_methods.pop_back();
  if (traced::isTransfer(identifier)) {
    m_work.transfer = identifier;
    m_work.transferDone = result != 0;
    noteIncompleteTransfer();
  }
  if (identifier == traced::kProcessNewEntry || identifier == traced::kProcessUpdatedEntry) end();
}

void MergeAccount::message(const ldtr::Record& record) {
  std::string_view text = record.message;
  if (text.ends_with('\n')) text.remove_suffix(1);
  std::string shown = ldtr::printable(text);
  m_work.message = shown;
  m_work.messageMethod = record.identifier;
  if (traced::isTransfer(record.identifier)) m_work.transferMessage = shown;

  std::vector<std::string>& messages = m_account.messages;
  if (!messages.empty() && shown == m_lastMessage) {
    messages.back() = shown + " (" + std::to_string(++m_repeated) + " times)";
    return;
  }
  m_repeated = 1;
  messages.push_back(shown);
  m_lastMessage = std::move(shown);
}

void MergeAccount::begin(Phase phase) {
  if (m_work.phase != Phase::none) doesNotFit("an entry was begun inside another");
  const bool isNew = phase == Phase::newEntry;
  const std::vector<std::size_t>& entries = isNew ? m_newEntries : m_commonEntries;
  std::size_t& next = isNew ? m_nextNew : m_nextCommon;
  if (next == entries.size()) doesNotFit("more entries were worked on than the old configuration has");
  m_work = {};
  m_work.phase = phase;
  m_work.entry = entries[next++];
  m_work.lossesBefore = m_account.losses.size();
  m_work.told.entry = numberOf(m_work.entry);
  m_work.told.isNew = isNew;
  m_work.told.firstEvent = m_events.events().size();
}

// Decides the entry's fate. A transfer that failed before it wrote anything has carried nothing.
void MergeAccount::end() {
  const bool carried = m_work.transferDone || m_work.wrote;
  if (m_work.transfer == traced::kAddCfgEntry) {
    decide(carried ? Fate::added : Fate::skipped);
  } else if (m_work.transfer == traced::kMergeCfgEntry) {
    decide(carried ? Fate::merged : Fate::skipped);
  } else if (m_work.transfer == traced::kMergeChangeDnEntry) {
    decide(carried ? Fate::moved : Fate::skipped);
  } else if (m_work.transfer == traced::kReplAddEntry) {
    decide(carried ? Fate::rebuilt : Fate::skipped);
  } else if (m_work.phase == Phase::newEntry) {
    // The rule sets elsewhere what is to survive.
    const bool failed = m_account.losses.size() > m_work.lossesBefore;
    decide(m_work.wrote ? Fate::moved : failed ? Fate::skipped : Fate::left);
  } else {
    const bool isTold = m_work.messageMethod != 0;
    addLoss(Loss::Kind::givenUp, m_work.message,
            methodText(isTold ? m_work.messageMethod : traced::kProcessUpdatedEntry));
    decide(Fate::skipped);
  }
  m_work = {};
}

// An entry that stands more than once in the new configuration keeps the fate of its first merge.
void MergeAccount::decide(Fate fate) {
  if (!m_fates[m_work.entry]) m_fates[m_work.entry] = fate;
  EntryWork& told = m_work.told;
  told.fate = fate;
  told.transfer = m_work.transfer.value_or(0);
  told.transferDone = m_work.transferDone;
  const std::string& message = m_work.transferMessage.empty() ? m_work.message : m_work.transferMessage;
  if (!m_work.transferDone) told.stopCode = codeIn(message).value_or(0);
  told.endEvent = m_events.events().size();
  m_works.push_back(told);
}

void MergeAccount::write(Side side, const Write& write) {
  m_events.add(side, write, m_methods.empty() ? m_methodOutside : m_methods.back(),
               m_work.phase == Phase::none ? kNone : m_work.told.entry);
  if (write.rc != 0) {
    if (!hasNothingToCarry(write) && !isEntryThatIsThere(write)) noteFailure(side, write);
  } else if (side == Side::newConfiguration) {
    if (write.operation == Operation::addEntry && m_work.phase == Phase::none) {
      m_account.addedByRule.emplace_back(write.dn);
    }
    if (!hasNothingToCarry(write)) {
      m_work.wrote = true;
      if (!m_methods.empty() && traced::isTransfer(m_methods.back())) m_work.target = write.dn;
    }
    if (write.changed) m_account.valuesWritten += valuesOf(write);
  }
  noteWriteOfRule(side, write);
}

// replAddEntry creates its entry without asking whether there is one, and then goes on. Whatever else speaks against
// creating it, speaks against its values as well.
bool MergeAccount::isEntryThatIsThere(const Write& write) const {
  return write.operation == Operation::addEntry && !m_methods.empty() && m_methods.back() == traced::kReplAddEntry;
}

// A rule moves a value by two writes in a row: it takes the value out of the old configuration, then sets it in the
// new one. What is only taken out is dropped.
void MergeAccount::noteWriteOfRule(Side side, const Write& write) {
  const bool sets = side == Side::newConfiguration && write.operation == Operation::setValue;
  if (sets && m_droppedValue && write.values.size() == 1 && write.values.front() == *m_droppedValue) {
    --m_account.valuesDropped;
    if (write.rc == 0) ++m_account.valuesMoved;
  }
  m_droppedValue.reset();
  if (side == Side::oldConfiguration && write.operation == Operation::delValue && write.rc == 0) {
    m_account.valuesDropped += write.values.size();
    if (write.values.size() == 1) m_droppedValue = write.values.front();
  }
}

void MergeAccount::noteFailure(Side side, const Write& write) {
  Loss loss;
  loss.kind = Loss::Kind::write;
  loss.method = m_methods.empty() ? std::string() : methodText(m_methods.back());
  if (m_work.phase != Phase::none) loss.entry = m_old[m_work.entry];
  loss.target = write.dn;
  loss.operation = operationName(write.operation);
  loss.attribute = write.attribute;
  loss.code = write.rc;
  if (side == Side::oldConfiguration) loss.reason = "in the old configuration";
  m_account.losses.push_back(std::move(loss));
}

// A transfer that ended early did so at a write, which is then the last loss of the entry, or at a read, of which only
// the library's message tells.
void MergeAccount::noteIncompleteTransfer() {
  if (m_work.transferDone || m_work.phase == Phase::none) return;
  std::vector<Loss>& losses = m_account.losses;
  const std::string method = methodText(*m_work.transfer);
  const bool atWrite = losses.size() > m_work.lossesBefore && losses.back().method == method;
  if (!atWrite) {
    addLoss(Loss::Kind::endedEarly, m_work.transferMessage, method);
  } else if (!m_work.transferMessage.empty()) {
    losses.back().restNotCarried = true;  // intended: addCfgEntry goes on after most refused values, and then is silent
  }
}

void MergeAccount::addLoss(Loss::Kind kind, const std::string& reason, const std::string& method) {
  Loss loss;
  loss.kind = kind;
  loss.method = method;
  loss.entry = m_old[m_work.entry];
  loss.target = m_work.transfer == traced::kMergeChangeDnEntry ? m_work.target : loss.entry;
  loss.reason = withoutMethod(reason);
  loss.code = codeIn(reason);
  loss.restNotCarried = true;
  m_account.losses.push_back(std::move(loss));
}

Account MergeAccount::finish() {
  if (!m_methods.empty()) doesNotFit("a method was entered and not left");
  if (m_nextNew != m_newEntries.size() || m_nextCommon != m_commonEntries.size()) {
    doesNotFit("not every old entry was worked on");
  }
  std::size_t sum = 0;
  for (const std::optional<Fate>& fate : m_fates) {
    if (!fate) doesNotFit("an old entry has no fate");
    m_account.fates.push_back(*fate);
    ++m_account.count[static_cast<std::size_t>(*fate)];
  }
  for (const std::size_t count : m_account.count) sum += count;
  if (sum != m_old.size()) doesNotFit("the sum of the fates is not the number of old entries");
  return std::move(m_account);
}

}  // namespace tool
