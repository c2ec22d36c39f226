#include "report/Unfolded.h"

namespace tool {
namespace {

constexpr Content kAll[] = {Content::old, Content::before, Content::result};

// The first value of the same attribute that equals this one: itself unless it is repeated.
ValueId firstEqual(const cfgstore::Snapshot& snapshot, ValueId value) {
  const auto values = snapshot.values();
  if (!values[value].repeated) return value;
  ValueId first = snapshot.attributeOf(values[value]).firstValue;
  while (values[first].value != values[value].value) ++first;
  return first;
}

}  // namespace

Unfolded::Unfolded(const Ledger& ledger, Content content, std::uint32_t entry)
    : m_ledger(ledger), m_oldValues(ledger.oldValues.size()), m_resultValues(ledger.resultValues.size()) {
  if (entry == cfgstore::Snapshot::kNone) return;
  const cfgstore::SnapshotEntry& from = snapshotOf(ledger, content).entries()[entry];
  if (!from.setAside) return;
  for (const Content each : kAll) {
    const cfgstore::Snapshot& snapshot = snapshotOf(ledger, each);
    snapshot.unfold(each == content ? entry : snapshot.findEntry(from.normal));
  }
  addRows();
}

Unfolded::~Unfolded() {
  for (const Content each : kAll) snapshotOf(m_ledger, each).fold();
  m_ledger.oldValues.resize(m_oldValues);
  m_ledger.resultValues.resize(m_resultValues);
}

// The three have the same bytes, and so the same values in the same order.
void Unfolded::addRows() {
  const std::size_t count = m_ledger.old.values().size() - m_oldValues;
  const std::size_t firstBefore = m_ledger.before.values().size() - count;
  for (std::size_t i = 0; i < count; ++i) {
    const ValueId equal = firstEqual(m_ledger.result, static_cast<ValueId>(m_resultValues + i));
    m_ledger.oldValues.push_back({ValueFate::same, m_ledger.sameSetAside, equal});
    m_ledger.resultValues.push_back(
        {ValueOrigin::fromNew, m_ledger.newSetAside, static_cast<ValueId>(firstBefore + i)});
  }
}

}  // namespace tool
