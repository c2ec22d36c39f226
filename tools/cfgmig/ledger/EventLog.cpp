#include "EventLog.h"

#include <cstring>
#include <span>
#include <utility>

#include "MergeRules.h"
#include "NormalDn.h"
#include "TracedMethod.h"

namespace tool {
namespace {

using cfgstore::Operation;
using cfgstore::Write;

constexpr std::uint32_t kNone = cfgstore::Snapshot::kNone;

bool isRule(unsigned long method) { return method == traced::kAddTo60 || method == traced::kMergeIn60; }

Why doingOf(Side side, const Write& write, unsigned long method) {
  if (traced::isCleanUp(method)) return Why::cleansUp;
  if (side == Side::oldConfiguration) return write.operation == Operation::delValue ? Why::takesOut : Why::addsToOld;
  if (method == traced::kReplAddEntry) return Why::buildsAnew;
  if (traced::isTransfer(method)) return write.operation == Operation::addEntry ? Why::creates : Why::carries;
  return isRule(method) ? Why::setsElsewhere : Why::addsItsOwn;
}

}  // namespace

EventLog::EventLog(const cfgstore::Snapshot& old)
    : m_old(old), m_finder(old), m_memory(std::make_unique<std::pmr::monotonic_buffer_resource>()) {
  m_events.reserve(old.values().size() + old.entries().size());
  m_methods.reserve(m_events.capacity());
}

void EventLog::add(Side side, const Write& write, unsigned long method, std::uint32_t entry) {
  LedgerEvent event;
  event.onOld = side == Side::oldConfiguration;
  event.operation = static_cast<std::uint8_t>(write.operation);
  event.changed = write.changed;
  event.rc = write.rc;
  event.reason = m_reasons.of(method, doingOf(side, write, method));
  event.oldEntry = entry;
  event.oldValue = valueOf(side, write, method, entry);
  if (entry != kNone && write.dn == m_old.entries()[entry].normal) {
    event.dn = m_old.entries()[entry].normal;
  } else if (write.dn == m_lastDn) {
    event.dn = m_lastDn;
  } else {
    event.dn = m_lastDn = keptName(write.dn);
  }
  if (write.attribute != m_lastName) m_lastName = keptName(write.attribute);
  event.attribute = m_lastName;

  if (const std::size_t count = write.values.size(); count > 0) {
    void* const room = m_memory->allocate(count * sizeof(std::string_view), alignof(std::string_view));
    auto* const values = static_cast<std::string_view*>(room);
    for (std::size_t i = 0; i < count; ++i) {
      const bool isOld = event.oldValue != kNoValue && write.values[i] == textOf(event.oldValue);
      new (values + i) std::string_view(isOld ? textOf(event.oldValue) : kept(write.values[i]));
    }
    event.values = std::span<const std::string_view>(values, count);
  }
  m_events.push_back(event);
  m_methods.push_back(method);
}

ValueId EventLog::valueOf(Side side, const Write& write, unsigned long method, std::uint32_t entry) {
  const ValueId taken = std::exchange(m_taken, kNoValue);
  if (write.operation == Operation::addEntry || write.operation == Operation::removeEntry) return kNoValue;
  if (write.values.size() != 1) return kNoValue;
  const std::string_view value = write.values.front();
  if (side == Side::oldConfiguration) {
    if (write.operation != Operation::delValue) return kNoValue;
    // The rules write DNs in their own spelling.
    if (entry == kNone || m_old.entries()[entry].normal != write.dn) {
      const auto normal = cfgstore::normalDn(write.dn);
      entry = normal ? m_old.findEntry(*normal) : kNone;
    }
    return m_taken = m_finder.value(entry, write.attribute, value);
  }
  if (method == traced::kReplAddEntry) {
    const bool isReplica = m_finder.attribute(entry, kMasterDn) != kNone;
    std::string_view name = write.attribute;
    if (!isReplica && isSameName(name, kMasterDn)) name = kPeerDn;
    if (!isReplica && isSameName(name, kMasterPw)) name = kPeerPw;
    if (rebuiltAs(name, isReplica ? MasterKind::replica : MasterKind::peer).empty()) return kNoValue;
    return m_finder.value(entry, name, value);
  }
  if (traced::isTransfer(method)) return m_finder.value(entry, write.attribute, value);
  if (!isRule(method)) return kNoValue;
  if (taken != kNoValue && textOf(taken).ends_with(value)) return taken;
  return m_finder.value(entry, write.attribute, value);
}

bool EventLog::isWhole(const LedgerEvent& event) const {
  return event.values.size() == 1 && event.values.front() == textOf(event.oldValue);
}

std::string_view EventLog::kept(std::string_view text) {
  if (text.empty()) return "";
  char* const copy = static_cast<char*>(m_memory->allocate(text.size(), 1));
  std::memcpy(copy, text.data(), text.size());
  return {copy, text.size()};
}

std::string_view EventLog::keptName(std::string_view name) {
  const auto found = m_kept.find(name);
  return found != m_kept.end() ? *found : *m_kept.insert(kept(name)).first;
}

void EventLog::moveTo(Ledger& ledger) {
  ledger.events = std::move(m_events);
  ledger.reasons = m_reasons.take();
  ledger.memory = std::move(m_memory);
}

}  // namespace tool
