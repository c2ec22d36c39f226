#include "audit/Names.h"

namespace tool::auditing {

NameId Names::of(std::string_view name) {
  const auto known = m_asWritten.find(name);
  if (known != m_asWritten.end()) return known->second;
  std::string lower(name);
  for (char& letter : lower) {
    if (letter >= 'A' && letter <= 'Z') letter = static_cast<char>(letter - 'A' + 'a');
  }
  const auto [at, isNew] = m_inLowerCase.try_emplace(std::move(lower), static_cast<NameId>(m_spellings.size()));
  if (isNew) m_spellings.push_back(name);
  m_asWritten.emplace(name, at->second);
  return at->second;
}

std::vector<NameId> nameIds(const cfgstore::Snapshot& snapshot, Names& names) {
  std::vector<NameId> ids;
  ids.reserve(snapshot.attributes().size());
  for (const cfgstore::SnapshotAttribute& attribute : snapshot.attributes()) ids.push_back(names.of(attribute.name));
  return ids;
}

}  // namespace tool::auditing
