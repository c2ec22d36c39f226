#include "DnPair.h"

#include <new>

#include "DnBerString.h"
#include "DnSpelling.h"
#include "DnType.h"
#include "DnValue.h"
#include "LdapLibrary.h"

namespace cfgstore {
namespace {

// A DN of exactly one attribute-value pair, parsed by libldap.
//
// Pairs are handed over one by one, although libldap could take the whole DN: its time grows with the square of the
// number of RDNs, and it takes what follows a `;` in front of `=` for an option and forgets it.
class ParsedPair {
 public:
  explicit ParsedPair(const std::string& text) {
    const int rc = m_ldap.str2dn(text.c_str(), &m_dn, LDAP_DN_FORMAT_LDAPV3);
    if (rc == LDAP_NO_MEMORY) throw std::bad_alloc();
    if (rc != LDAP_SUCCESS) m_dn = nullptr;
  }
  ~ParsedPair() {
    if (m_dn != nullptr) m_ldap.dnfree(m_dn);
  }
  ParsedPair(const ParsedPair&) = delete;
  ParsedPair& operator=(const ParsedPair&) = delete;

  // Null when the text is not one pair.
  const LDAPAVA* pair() const {
    const bool one =
        m_dn != nullptr && m_dn[0] != nullptr && m_dn[1] == nullptr && m_dn[0][0] != nullptr && m_dn[0][1] == nullptr;
    return one ? m_dn[0][0] : nullptr;
  }

 private:
  const LdapLibrary& m_ldap = LdapLibrary::get();
  LDAPDN m_dn = nullptr;
};

std::string_view viewOf(const berval& text) {
  return text.bv_len == 0 ? std::string_view() : std::string_view(text.bv_val, text.bv_len);
}

}  // namespace

bool appendNormalPair(std::string_view text, std::string& out) {
  if (text.find('\0') != std::string_view::npos) return false;
  const auto spelling = rfc4514Pair(text);
  if (!spelling) return false;
  const ParsedPair parsed(spelling->text);
  const LDAPAVA* const pair = parsed.pair();
  if (pair == nullptr) return false;

  const std::size_t before = out.size();
  if (!appendNormalType(text.substr(spelling->type, pair->la_attr.bv_len), out)) {
    out.resize(before);
    return false;
  }
  out += '=';
  if ((pair->la_flags & LDAP_AVA_BINARY) == 0) {
    appendNormalValue(viewOf(pair->la_value), out);
  } else if (const auto string = directoryStringOfBer(viewOf(pair->la_value))) {
    appendNormalValue(*string, out);
  } else {
    appendHexValue(viewOf(pair->la_value), out);
  }
  return true;
}

}  // namespace cfgstore
