#include "Corpus.h"

#include <string_view>

namespace cfgstore::test {
namespace {

std::string withReturns(std::string_view text) {
  std::string result;
  for (const char c : text) result += c == '\n' ? std::string("\r\n") : std::string(1, c);
  return result;
}

std::string foldedAfterEachByte(std::string_view text) {
  std::string result;
  for (std::size_t i = 0; i < text.size(); ++i) {
    result += text[i];
    const bool lineGoesOn = text[i] != '\n' && i + 1 < text.size() && text[i + 1] != '\n';
    if (lineGoesOn) result += "\n ";
  }
  return result;
}

const char* const kPlain =
    "dn: CN=CONFIGURATION\n"
    "objectClass: top\n"
    "cn: CONFIGURATION\n"
    "\n"
    "dn: CN=A,CN=CONFIGURATION\n"
    "objectClass: top\n"
    "port: 389\n"
    "\n"
    "dn: CN=B,CN=CONFIGURATION\n"
    "objectClass: top\n"
    "plugin: one\n"
    "plugin: two\n"
    "other: x\n";

std::vector<Sample> makeCorpus() {
  const std::string plain = kPlain;
  std::vector<Sample> samples{
      {"plain", plain},
      {"CRLF line ends", withReturns(plain)},
      {"mixed line ends", withReturns(plain.substr(0, 60)) + plain.substr(60)},
      {"no newline at the end", plain.substr(0, plain.size() - 1)},
      {"CRLF and no newline at the end", withReturns(plain.substr(0, plain.size() - 1))},
      {"version line", "version: 1\n\n" + plain},
      {"version line directly above the first entry", "version: 1\n" + plain},
      {"byte-order mark", "\xEF\xBB\xBF" + plain},
      {"byte-order mark and version", "\xEF\xBB\xBFversion: 1\n" + plain},
      {"empty lines at both ends", "\n\n\n" + plain + "\n\n\n"},
      {"folded after each byte", foldedAfterEachByte(plain)},
      {"header comments", "# Configuration of this server\n# second line\n\n# first entry\n" + plain},
  };
  samples.push_back({"comments everywhere",
                     "# top\n\n# about the root\ndn: CN=CONFIGURATION\n# inside\nobjectClass: top\n# goes\n  on\n\n"
                     "# between entries\n\n# about A\ndn: CN=A,CN=CONFIGURATION\nport: 389\n# below the port\n\n\n"
                     "dn: CN=B,CN=CONFIGURATION\n# above the first\nplugin: one\n# above the second\nplugin: two\n"
                     "# the end of B\n\n# the end of the file\n"});
  samples.push_back({"base64 values, DNs and object classes",
                     "dn:: Q049QSxDTj1DT05GSUdVUkFUSU9O\nport:: Mzg5\nsecret:: YSBzZWNyZXQg\n\n"
                     "dn::Q049QixDTj1DT05GSUdVUkFUSU9O\nplugin::b25l\nplugin::   dHdv\nempty::\n"});
  samples.push_back(
      {"letter case and blanks in DNs and names",
       "DN: cn=a, cn=Configuration\nPORT: 389\n\ndn:cn=B ,  Cn = configuration\nPlugin:one\nPLUGIN:two\n"});
  samples.push_back({"folded values, names and DNs",
                     "dn: CN=A,CN=\n CONFIGURATION\npo\n rt: 3\n 8\n 9\nlong: a text that is\n  folded at a blank\n\n"
                     "dn\n : CN=B,CN=CONFIGURATION\nplugin:\n  one\nplugin: \n two\nblob:\n : b25l\nblob:: b2\n 5l\n"});
  samples.push_back({"UTF-8 and other bytes",
                     "dn: CN=A,CN=CONFIGURATION\nport: 389\nname: J\xC3\xBCrgen \xE2\x82\xAC\nlatin: \xFC\xFF\xFE\n\n"
                     "dn: CN=B,CN=CONFIGURATION\nplugin: one\nplugin: two\n\n"
                     "dn: CN=\xC3\x84pfel,CN=CONFIGURATION\ncn: \xC3\x84pfel\n"});
  samples.push_back({"odd values",
                     "dn: CN=A,CN=CONFIGURATION\nport: 389\nempty:\nblank:  \ntrailing: x  \nleading:    y\n"
                     "tab:\tz\nhash: # no comment\ncolon: a:b::c\nduplicate: d\nduplicate: d\nDUPLICATE: e\n\n"
                     "dn: CN=B,CN=CONFIGURATION\nplugin: one\nplugin: two\nname;lang-de: x\nname;binary;lang-en: y\n"
                     "1.3.6.1.4.1: oid\n"});
  samples.push_back({"values apart from each other",
                     "dn: CN=A,CN=CONFIGURATION\nx: 1\nport: 389\nx: 2\n\n"
                     "dn: CN=B,CN=CONFIGURATION\nplugin: one\ny: 1\n# c\nplugin: two\ny: 2\n"});
  samples.push_back({"children before their parents, no root",
                     "dn: CN=X,CN=A,CN=CONFIGURATION\ncn: X\n\ndn: CN=A,CN=CONFIGURATION\nport: 389\n\n"
                     "dn: CN=Y,CN=B,CN=CONFIGURATION\n\ndn: CN=B,CN=CONFIGURATION\nplugin: one\nplugin: two\n"});
  return samples;
}

}  // namespace

const std::vector<Sample>& corpus() {
  static const std::vector<Sample> samples = makeCorpus();
  return samples;
}

}  // namespace cfgstore::test
