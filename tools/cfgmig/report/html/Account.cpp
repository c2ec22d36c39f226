#include "report/html/Account.h"

#include <algorithm>
#include <numeric>
#include <unordered_map>

#include "NormalDn.h"
#include "report/Unfolded.h"
#include "report/html/EntryRows.h"

namespace tool::html {
Account::Account(const Ledger& ledger) : m_ledger(ledger) {
  for (const Content content : kAll) addEntries(content);
  connect();
  linkReplaced();
  sumUp();
}

// Entries of one DN share a node, but for a second one of a DN in the same content.
void Account::addEntries(Content content) {
  std::unordered_map<std::string_view, std::uint32_t> known;
  for (std::size_t i = 0; i < m_nodes.size(); ++i) known.emplace(m_nodes[i].normal, static_cast<std::uint32_t>(i));
  const auto entries = snapshotOf(m_ledger, content).entries();
  const auto side = static_cast<std::size_t>(content);
  for (std::size_t i = 0; i < entries.size(); ++i) {
    const auto [place, isNew] = known.emplace(entries[i].normal, static_cast<std::uint32_t>(m_nodes.size()));
    std::uint32_t number = place->second;
    if (isNew || m_nodes[number].entries[side] != kNone) {
      number = static_cast<std::uint32_t>(m_nodes.size());
      Node node;
      node.dn = entries[i].dn;
      node.normal = entries[i].normal;
      node.entries.fill(kNone);
      m_nodes.push_back(std::move(node));
    }
    m_nodes[number].entries[side] = static_cast<std::uint32_t>(i);
    m_nodeOfEntry[side].push_back(number);
  }
}

void Account::connect() {
  m_byNormal.resize(m_nodes.size());
  std::iota(m_byNormal.begin(), m_byNormal.end(), 0U);
  std::stable_sort(m_byNormal.begin(), m_byNormal.end(),
                   [&](std::uint32_t a, std::uint32_t b) { return m_nodes[a].normal < m_nodes[b].normal; });
  for (std::size_t i = 0; i < m_nodes.size(); ++i) {
    const auto number = static_cast<std::uint32_t>(i);
    std::string_view above = m_nodes[i].normal;
    std::uint32_t parent = kNone;
    while (!above.empty() && parent == kNone) {
      above = cfgstore::parentOfNormalDn(above);
      parent = find(above);
    }
    if (parent == number) parent = kNone;
    m_nodes[i].parent = parent;
    (parent == kNone ? m_tops : m_nodes[parent].children).push_back(number);
  }
}

void Account::linkReplaced() {
  m_replacedBy.assign(m_ledger.result.values().size(), kNone);
  m_replacedRow.assign(m_ledger.before.values().size(), kNone);
  m_nextReplaced.assign(m_ledger.replaced.size(), kNone);
  for (std::size_t i = m_ledger.replaced.size(); i-- > 0;) {
    const ReplacedRow& row = m_ledger.replaced[i];
    const auto number = static_cast<std::uint32_t>(i);
    m_replacedRow[row.before] = number;
    if (row.by == kNoValue) continue;
    m_nextReplaced[i] = m_replacedBy[row.by];
    m_replacedBy[row.by] = number;
  }
}

void Account::sumUp() {
  for (std::size_t i = 0; i < m_nodes.size(); ++i) {
    const Unfolded unfolded(m_ledger, Content::old, m_nodes[i].entry(Content::old));
    const std::vector<Row> rows = rowsOf(static_cast<std::uint32_t>(i));
    for (const Row& row : rows) m_nodes[i].words |= row.words;
    m_nodes[i].size = 1 + rows.size();
  }
  // A parent's DN is shorter than its child's, so that the longest come first.
  std::vector<std::uint32_t> order(m_nodes.size());
  std::iota(order.begin(), order.end(), 0U);
  std::sort(order.begin(), order.end(),
            [&](std::uint32_t a, std::uint32_t b) { return m_nodes[a].normal.size() > m_nodes[b].normal.size(); });
  for (const std::uint32_t number : order) {
    Node& node = m_nodes[number];
    node.wordsBelow |= node.words;
    node.sizeBelow += node.size;
    if (node.parent == kNone) continue;
    m_nodes[node.parent].wordsBelow |= node.wordsBelow;
    m_nodes[node.parent].sizeBelow += node.sizeBelow;
  }
}

std::uint32_t Account::nodeOf(Content content, ValueId value) const {
  const cfgstore::Snapshot& snapshot = snapshotOf(m_ledger, content);
  return nodeOfEntry(content, snapshot.attributeOf(snapshot.values()[value]).entry);
}

std::uint32_t Account::nodeOfEntry(Content content, std::uint32_t entry) const {
  return m_nodeOfEntry[static_cast<std::size_t>(content)][entry];
}

std::uint32_t Account::find(std::string_view normal) const {
  const auto place =
      std::lower_bound(m_byNormal.begin(), m_byNormal.end(), normal,
                       [&](std::uint32_t node, std::string_view dn) { return m_nodes[node].normal < dn; });
  return place != m_byNormal.end() && m_nodes[*place].normal == normal ? *place : kNone;
}

std::vector<Row> Account::rowsOf(std::uint32_t node) const {
  return EntryRows(m_ledger, {m_replacedBy, m_nextReplaced, m_replacedRow}).of(m_nodes[node].entries);
}

}  // namespace tool::html
