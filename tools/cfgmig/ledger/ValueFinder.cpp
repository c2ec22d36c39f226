#include "ValueFinder.h"

#include <strings.h>

#include <algorithm>
#include <functional>

namespace tool {
namespace {

constexpr std::uint32_t kFewValues = 16;

}  // namespace

bool isSameName(std::string_view left, std::string_view right) {
  if (left.size() != right.size()) return false;
  return left.data() == right.data() || strncasecmp(left.data(), right.data(), left.size()) == 0;
}

std::uint32_t ValueFinder::attribute(std::uint32_t entry, std::string_view name) {
  if (entry == kNone) return kNone;
  const cfgstore::SnapshotEntry& owner = m_snapshot.entries()[entry];
  // Mostly the attribute asked for last, or the one behind it.
  std::uint32_t candidate = m_entry == entry && m_attribute != kNone ? m_attribute : owner.firstAttribute;
  const std::uint32_t end = owner.firstAttribute + owner.attributes;
  m_entry = entry;
  for (int tries = 0; tries < 2 && candidate < end; ++tries, ++candidate) {
    if (isSameName(m_snapshot.attributes()[candidate].name, name)) return m_attribute = candidate;
  }
  // Also when there is none: what is remembered has to be one of this entry.
  return m_attribute = m_snapshot.findAttribute(entry, name);
}

ValueId ValueFinder::value(std::uint32_t attribute, std::string_view value) {
  if (attribute == kNone) return kNoValue;
  const cfgstore::SnapshotAttribute& owner = m_snapshot.attributes()[attribute];
  const auto values = m_snapshot.values();
  const ValueId end = owner.firstValue + owner.values;
  const ValueId next = m_value >= owner.firstValue && m_value < end ? m_value + 1 : owner.firstValue;
  if (next < end && !values[next].repeated && values[next].value == value) return m_value = next;
  if (owner.values <= kFewValues) {
    for (ValueId i = owner.firstValue; i < end; ++i) {
      if (values[i].value == value) return m_value = i;
    }
    return kNoValue;
  }
  const ByHash& sorted = byHash(attribute);
  const std::size_t hash = std::hash<std::string_view>()(value);
  auto at = std::lower_bound(sorted.begin(), sorted.end(), std::pair<std::size_t, ValueId>(hash, 0));
  for (; at != sorted.end() && at->first == hash; ++at) {
    if (values[at->second].value == value) return m_value = at->second;
  }
  return kNoValue;
}

const ValueFinder::ByHash& ValueFinder::byHash(std::uint32_t attribute) {
  ByHash& sorted = m_byHash[attribute];
  if (!sorted.empty()) return sorted;
  const cfgstore::SnapshotAttribute& owner = m_snapshot.attributes()[attribute];
  sorted.reserve(owner.values);
  for (ValueId i = owner.firstValue; i < owner.firstValue + owner.values; ++i) {
    const cfgstore::SnapshotValue& value = m_snapshot.values()[i];
    if (!value.repeated) sorted.emplace_back(std::hash<std::string_view>()(value.value), i);
  }
  std::sort(sorted.begin(), sorted.end());
  return sorted;
}

}  // namespace tool
