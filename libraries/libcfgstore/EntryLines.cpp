#include "EntryLines.h"

#include <deque>
#include <unordered_set>
#include <utility>

#include "TextHash.h"

namespace cfgstore {
namespace {

// Up to here looking at each one is faster than a hash table. Names are told apart by a key; values are compared.
constexpr std::size_t kFew = 16;
constexpr std::size_t kFewNames = 64;

unsigned char lower(char c) { return static_cast<unsigned char>(c >= 'A' && c <= 'Z' ? c | 0x20 : c); }

std::uint32_t keyOf(std::string_view name) {
  const std::size_t middle = name.size() / 2;
  return static_cast<std::uint32_t>(name.size() & 0xff) << 24 | static_cast<std::uint32_t>(lower(name[middle])) << 16 |
         static_cast<std::uint32_t>(lower(name.back())) << 8 | lower(name[name.size() * 3 / 4]);
}

std::size_t hashOfName(std::string_view name) {
  std::string folded(name);
  for (char& c : folded) c = static_cast<char>(lower(c));
  return hashOfText(folded);
}

}  // namespace

void EntryLines::assign(std::span<const Line> lines) {
  m_nodes.clear();
  m_attributes.clear();
  m_byName.clear();
  m_byValue.clear();
  m_first = m_lastNamed = kNoNode;
  m_lastFound = 0;
  m_nodes.reserve(lines.size());
  std::string scratch;
  for (const Line& line : lines) {
    const auto node = static_cast<NodeId>(m_nodes.size());
    m_nodes.push_back({line, node == 0 ? kNoNode : node - 1, kNoNode, kNoNode, kNoNode});
    if (node == 0) {
      m_first = node;
    } else {
      m_nodes[node - 1].next = node;
    }
    if (line.kind == LineKind::attribute) linkValue(findOrAdd(lineName(line, scratch), node), node);
    if (line.kind == LineKind::attribute || line.kind == LineKind::dn) m_lastNamed = node;
  }
}

EntryLines::Attribute EntryLines::findAny(std::string_view name) const {
  if (name.empty()) return kNone;
  const auto matches = [&](Attribute attribute) {
    return sameName(lineName(m_nodes[m_attributes[attribute].name].line, m_scratch), name);
  };
  if (m_byName.empty()) {
    const std::uint32_t key = keyOf(name);
    for (Attribute attribute = m_lastFound; attribute < m_attributes.size() && attribute - m_lastFound < 2;
         ++attribute) {
      if (m_attributes[attribute].nameKey == key && matches(attribute)) return m_lastFound = attribute;
    }
    for (Attribute attribute = 0; attribute < m_attributes.size(); ++attribute) {
      if (m_attributes[attribute].nameKey == key && matches(attribute)) return m_lastFound = attribute;
    }
    return kNone;
  }
  const auto [begin, end] = m_byName.equal_range(hashOfName(name));
  for (auto at = begin; at != end; ++at) {
    if (matches(at->second)) return at->second;
  }
  return kNone;
}

EntryLines::Attribute EntryLines::find(std::string_view name) const {
  const Attribute attribute = findAny(name);
  return attribute != kNone && m_attributes[attribute].count != 0 ? attribute : kNone;
}

EntryLines::Attribute EntryLines::findOrAdd(std::string_view name, NodeId node) {
  const Attribute found = findAny(name);
  if (found != kNone) return found;
  const auto attribute = static_cast<Attribute>(m_attributes.size());
  m_attributes.push_back({keyOf(name), 0, node, kNoNode, kNoNode});
  if (!m_byName.empty()) {
    m_byName.emplace(hashOfName(name), attribute);
  } else if (m_attributes.size() > kFewNames) {
    std::string scratch;
    std::unordered_multimap<std::size_t, Attribute> names;
    for (Attribute i = 0; i <= attribute; ++i) {
      names.emplace(hashOfName(lineName(m_nodes[m_attributes[i].name].line, scratch)), i);
    }
    m_byName.swap(names);
  }
  return attribute;
}

void EntryLines::visitValues(Attribute attribute, const std::function<void(std::string_view)>& visit) const {
  const AttributeLines& lines = m_attributes[attribute];
  const bool many = lines.count > kFew;
  std::unordered_set<std::string_view, TextHash> seen;
  std::deque<std::string> decoded;  // what `seen` refers to where a line does not hold the value as it is
  std::string earlierScratch;
  for (NodeId node = lines.first; node != kNoNode; node = m_nodes[node].nextValue) {
    const Line& line = m_nodes[node].line;
    std::string_view value = lineValue(line, m_scratch);
    bool known = false;
    if (!many) {
      for (NodeId earlier = lines.first; earlier != node && !known; earlier = m_nodes[earlier].nextValue) {
        known = lineValue(m_nodes[earlier].line, earlierScratch) == value;
      }
    } else if (!(known = seen.contains(value))) {
      if (line.flags != 0) value = decoded.emplace_back(value);
      seen.insert(value);
    }
    if (!known) visit(value);
  }
}

std::string EntryLines::firstValue(Attribute attribute) const {
  return std::string(lineValue(m_nodes[m_attributes[attribute].first].line, m_scratch));
}

const EntryLines::ByValue& EntryLines::byValue(Attribute attribute) const {
  const auto known = m_byValue.find(attribute);
  if (known != m_byValue.end()) return known->second;
  ByValue table;
  table.reserve(m_attributes[attribute].count);
  for (NodeId node = m_attributes[attribute].first; node != kNoNode; node = m_nodes[node].nextValue) {
    table.emplace(hashOfText(lineValue(m_nodes[node].line, m_scratch)), node);
  }
  return m_byValue.emplace(attribute, std::move(table)).first->second;
}

EntryLines::NodeId EntryLines::findValue(Attribute attribute, std::string_view value) const {
  const AttributeLines& lines = m_attributes[attribute];
  if (lines.count <= kFew && !m_byValue.contains(attribute)) {
    for (NodeId node = lines.first; node != kNoNode; node = m_nodes[node].nextValue) {
      if (lineValue(m_nodes[node].line, m_scratch) == value) return node;
    }
    return kNoNode;
  }
  const ByValue& table = byValue(attribute);
  const std::size_t hash = hashOfText(value);
  for (auto at = table.find(hash); at != table.end() && at->first == hash; ++at) {
    if (lineValue(m_nodes[at->second].line, m_scratch) == value) return at->second;
  }
  return kNoNode;
}

bool EntryLines::hasValue(Attribute attribute, std::string_view value) const {
  return findValue(attribute, value) != kNoNode;
}

bool EntryLines::isOnlyValue(Attribute attribute, std::string_view value) const {
  for (NodeId node = m_attributes[attribute].first; node != kNoNode; node = m_nodes[node].nextValue) {
    if (lineValue(m_nodes[node].line, m_scratch) != value) return false;
  }
  return true;
}

std::string EntryLines::nameAsWritten(Attribute attribute) const {
  return std::string(lineName(m_nodes[m_attributes[attribute].first].line, m_scratch));
}

void EntryLines::visitNames(const std::function<void(std::string_view)>& visit) const {
  for (NodeId node = m_first; node != kNoNode; node = m_nodes[node].next) {
    const Node& at = m_nodes[node];
    if (at.line.kind == LineKind::attribute && at.previousValue == kNoNode) visit(lineName(at.line, m_scratch));
  }
}

void EntryLines::append(Attribute attribute, const Line& line) {
  const auto node = static_cast<NodeId>(m_nodes.size());
  // By a quarter: many entries get a few lines each.
  if (m_nodes.size() == m_nodes.capacity()) m_nodes.reserve(m_nodes.size() + m_nodes.size() / 4 + 4);
  const auto table = m_byValue.find(attribute);
  if (table != m_byValue.end()) table->second.emplace(hashOfText(lineValue(line, m_scratch)), node);
  m_nodes.push_back({line, kNoNode, kNoNode, kNoNode, kNoNode});
  linkAfter(m_attributes[attribute].last, node);
  linkValue(attribute, node);
}

void EntryLines::appendNew(const Line& line) {
  std::string scratch;
  const auto node = static_cast<NodeId>(m_nodes.size());
  m_nodes.push_back({line, kNoNode, kNoNode, kNoNode, kNoNode});
  const Attribute attribute = findOrAdd(lineName(line, scratch), node);
  m_byValue.erase(attribute);
  linkAfter(m_lastNamed, node);
  linkValue(attribute, node);
}

void EntryLines::remove(Attribute attribute, std::string_view value) {
  const auto holdsValue = [&](NodeId node) { return lineValue(m_nodes[node].line, m_scratch) == value; };
  const auto known = m_byValue.find(attribute);
  if (known == m_byValue.end()) {
    for (NodeId node = m_attributes[attribute].first; node != kNoNode;) {
      const NodeId next = m_nodes[node].nextValue;
      if (holdsValue(node)) unlink(attribute, node);
      node = next;
    }
    return;
  }
  ByValue& table = known->second;
  const std::size_t hash = hashOfText(value);
  for (auto at = table.find(hash); at != table.end() && at->first == hash;) {
    if (holdsValue(at->second)) {
      unlink(attribute, at->second);
      at = table.erase(at);
    } else {
      ++at;
    }
  }
}

void EntryLines::replace(Attribute attribute, std::string_view value, const Line& line) {
  const NodeId holder = findValue(attribute, value);
  const NodeId kept = holder != kNoNode ? holder : m_attributes[attribute].first;
  m_byValue.erase(attribute);
  if (holder == kNoNode) m_nodes[kept].line = line;
  for (NodeId node = m_attributes[attribute].first; node != kNoNode;) {
    const NodeId next = m_nodes[node].nextValue;
    if (node != kept) unlink(attribute, node);
    node = next;
  }
}

void EntryLines::linkAfter(NodeId previous, NodeId node) noexcept {
  const NodeId next = m_nodes[previous].next;
  m_nodes[node].previous = previous;
  m_nodes[node].next = next;
  m_nodes[previous].next = node;
  if (next != kNoNode) m_nodes[next].previous = node;
  if (m_lastNamed == previous) m_lastNamed = node;
}

void EntryLines::linkValue(Attribute attribute, NodeId node) noexcept {
  AttributeLines& lines = m_attributes[attribute];
  m_nodes[node].previousValue = lines.last;
  if (lines.last == kNoNode) {
    lines.first = node;
  } else {
    m_nodes[lines.last].nextValue = node;
  }
  lines.last = node;
  ++lines.count;
}

void EntryLines::unlink(Attribute attribute, NodeId node) noexcept {
  const Node& gone = m_nodes[node];
  if (m_lastNamed == node) {
    do m_lastNamed = m_nodes[m_lastNamed].previous;
    while (m_nodes[m_lastNamed].line.kind == LineKind::comment);
  }
  m_nodes[gone.previous].next = gone.next;  // the dn line is above, and stays
  if (gone.next != kNoNode) m_nodes[gone.next].previous = gone.previous;
  AttributeLines& lines = m_attributes[attribute];
  (gone.previousValue == kNoNode ? lines.first : m_nodes[gone.previousValue].nextValue) = gone.nextValue;
  (gone.nextValue == kNoNode ? lines.last : m_nodes[gone.nextValue].previousValue) = gone.previousValue;
  --lines.count;
}

}  // namespace cfgstore
