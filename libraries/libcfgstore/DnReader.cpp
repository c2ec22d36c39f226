#include "DnReader.h"

#include <algorithm>
#include <vector>

#include "DnPair.h"
#include "DnPlain.h"
#include "DnSpelling.h"

namespace cfgstore {

bool DnReader::next() {
  if (!m_more) return false;
  const auto plain = readPlainRdn(m_rest, m_plain);
  if (!plain) return nextParsed();
  m_rdn = {m_plain.data(), plain->written};
  m_more = plain->read < m_rest.size();
  m_rest.remove_prefix(plain->read + (m_more ? 1 : 0));
  return true;
}

bool DnReader::nextParsed() {
  m_parsed.clear();
  if (!parsePairs()) {
    m_failed = true;
    m_more = false;
    return false;
  }
  m_rdn = m_parsed;
  return true;
}

// Reads the pairs up to the end of the RDN into m_parsed, sorted.
bool DnReader::parsePairs() {
  std::vector<std::string> pairs;
  for (bool inRdn = true; inRdn;) {
    const std::size_t length = pairLength(m_rest);
    m_parsed.clear();
    const std::string_view pair = m_rest.substr(0, length);
    if (!appendPlainPair(pair, m_parsed) && !appendNormalPair(pair, m_parsed)) return false;
    m_more = length < m_rest.size();
    inRdn = m_more && m_rest[length] == '+';
    m_rest.remove_prefix(length + (m_more ? 1 : 0));
    if (inRdn || !pairs.empty()) pairs.push_back(m_parsed);
  }
  if (pairs.empty()) return true;  // the only pair is in m_parsed already

  std::sort(pairs.begin(), pairs.end());
  pairs.erase(std::unique(pairs.begin(), pairs.end()), pairs.end());
  m_parsed.clear();
  for (const std::string& pair : pairs) {
    if (!m_parsed.empty()) m_parsed += '+';
    m_parsed += pair;
  }
  return true;
}

}  // namespace cfgstore
