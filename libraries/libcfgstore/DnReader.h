// DnReader.h -- reads a DN one RDN at a time, each in normal form. Everything that normalises or compares DNs reads
// them with this class, so that no two places can disagree about a DN.

#ifndef CFGMIG_LIBCFGSTORE_DNREADER_H
#define CFGMIG_LIBCFGSTORE_DNREADER_H

#include <array>
#include <string>
#include <string_view>

namespace cfgstore {

class DnReader {
 public:
  // `dn` must stay valid as long as the reader is used.
  // NOLINTNEXTLINE(cppcoreguidelines-pro-type-member-init): to set m_plain takes longer than most DNs
  explicit DnReader(std::string_view dn) : m_rest(dn), m_more(!dn.empty()) {}
  DnReader(const DnReader&) = delete;
  DnReader& operator=(const DnReader&) = delete;

  // Reads the next RDN. False when there is none left or the text is no DN; it then stays false.
  bool next();

  // The normal form of the RDN that was read last, never empty. Valid until the next call of next().
  std::string_view rdn() const { return m_rdn; }

  // True once the reader has met something that is no RDN.
  bool failed() const { return m_failed; }

 private:
  // Invariants:
  //   1. m_rest is what has not been read yet; it begins after a separator.
  //   2. m_more says that an RDN has to follow. It is true after a separator, also at the end of the text.
  //   3. m_rdn points into m_plain or m_parsed.
  bool nextParsed();
  bool parsePairs();

  std::string_view m_rest;
  std::string_view m_rdn;
  bool m_more;
  bool m_failed = false;
  std::array<char, 256> m_plain;  // not set before use; longer RDNs go the general way, which allocates
  std::string m_parsed;
};

}  // namespace cfgstore

#endif  // CFGMIG_LIBCFGSTORE_DNREADER_H
