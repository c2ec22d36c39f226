#include "NormalDn.h"

#include "DnReader.h"

namespace cfgstore {

std::optional<std::string> normalDn(std::string_view dn) {
  std::string normal;
  normal.reserve(dn.size());  // enough unless Unicode or escapes make a value longer
  DnReader reader(dn);
  while (reader.next()) {
    if (!normal.empty()) normal += ',';  // no RDN is empty
    normal += reader.rdn();
  }
  if (reader.failed()) return std::nullopt;
  return normal;
}

// A normal RDN has no unescaped comma, so that equal sequences of RDNs and equal normal forms are the same thing.
bool sameDn(std::string_view left, std::string_view right) {
  DnReader leftReader(left);
  DnReader rightReader(right);
  while (leftReader.next()) {
    if (!rightReader.next() || leftReader.rdn() != rightReader.rdn()) return false;
  }
  return !leftReader.failed() && !rightReader.next() && !rightReader.failed();
}

std::string_view parentOfNormalDn(std::string_view normal) {
  for (std::size_t at = 0; at < normal.size(); ++at) {
    if (normal[at] == ',') return normal.substr(at + 1);
    if (normal[at] == '\\') ++at;  // the escaped character is no separator
  }
  return {};
}

bool isWithinNormalDn(std::string_view normal, std::string_view normalBase) {
  if (normalBase.empty() || normal == normalBase) return true;
  if (normal.size() <= normalBase.size() + 1 || !normal.ends_with(normalBase)) return false;
  const std::size_t comma = normal.size() - normalBase.size() - 1;
  if (normal[comma] != ',') return false;
  // The comma separates unless a backslash escapes it that is not itself the second of an escaped pair.
  std::size_t backslashes = 0;
  while (backslashes < comma && normal[comma - 1 - backslashes] == '\\') ++backslashes;
  return backslashes % 2 == 0;
}

}  // namespace cfgstore
