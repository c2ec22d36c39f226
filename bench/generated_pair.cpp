#include "generated_pair.h"

#include <cstdint>
#include <cstdio>
#include <ostream>
#include <string>

namespace {

// SplitMix64: the same numbers on every machine.
class Numbers {
 public:
  explicit Numbers(std::uint64_t seed) : m_state(seed) {}
  std::uint64_t next() {
    std::uint64_t z = (m_state += 0x9e3779b97f4a7c15);
    z = (z ^ (z >> 30)) * 0xbf58476d1ce4e5b9;
    z = (z ^ (z >> 27)) * 0x94d049bb133111eb;
    return z ^ (z >> 31);
  }
  std::uint64_t below(std::uint64_t limit) { return next() % limit; }

 private:
  std::uint64_t m_state;
};

enum class Kind { same, changed, oldOnly, newOnly };

Kind kindOf(std::uint64_t percent) {
  if (percent < 80) return Kind::same;
  if (percent < 90) return Kind::changed;
  return percent < 95 ? Kind::oldOnly : Kind::newOnly;
}

constexpr std::size_t kWidth = 78;
constexpr std::uint64_t kEntriesInGroup = 500;

// One line of the file, folded.
void line(std::string& out, const std::string& text) {
  out.append(text, 0, kWidth);
  for (std::size_t at = kWidth; at < text.size(); at += kWidth - 1) out.append("\n ").append(text, at, kWidth - 1);
  out += '\n';
}

std::string hexadecimal(Numbers& numbers, int words) {
  std::string text;
  for (int i = 0; i < words; ++i) {
    char word[17];
    std::snprintf(word, sizeof word, "%016llx", static_cast<unsigned long long>(numbers.next()));
    text += word;
  }
  return text;
}

// Any bytes in base64, but no zero bytes, which a setting cannot hold.
std::string base64(Numbers& numbers, int groups) {
  static const char letters[] = "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/";
  std::string text;
  for (int i = 0; i < groups; ++i) {
    std::uint64_t bytes = 0;
    for (int k = 0; k < 3; ++k) bytes = bytes << 8 | (1 + numbers.below(255));
    for (int shift = 18; shift >= 0; shift -= 6) text += letters[bytes >> shift & 63];
  }
  return text;
}

std::string words(Numbers& numbers, int count) {
  static const char* const some[] = {"index", "cache", "page",   "lock",  "thread", "buffer", "search", "filter",
                                     "limit", "table", "suffix", "entry", "value",  "server", "office", "replica"};
  std::string text;
  for (int i = 0; i < count; ++i) text.append(i == 0 ? "" : " ").append(some[numbers.below(16)]);
  return text;
}

std::string dnOf(std::uint64_t number, bool spelledOtherwise) {
  const std::string group = std::to_string(number / kEntriesInGroup);
  const std::string own = std::to_string(number);
  if (spelledOtherwise) return "CN=SETTING " + own + ",CN=GROUP " + group + ",CN=CONFIGURATION";
  return "cn=Setting " + own + ", cn=Group " + group + ", cn=Configuration";
}

void addGroup(std::string& out, std::uint64_t group) {
  const std::string name = "Group " + std::to_string(group);
  out += "dn: cn=" + name + ", cn=Configuration\nobjectClass: top\nobjectClass: container\ncn: " + name + "\n\n";
}

struct Sides {
  std::string old;
  std::string now;
};

void addEntry(Sides& sides, std::uint64_t number, Kind kind, Numbers& numbers) {
  const bool spelledOtherwise = numbers.below(3) == 0;
  std::string head =
      "objectClass: top\nobjectClass: zor-slapdConfigEntry\ncn: Setting " + std::to_string(number) + "\n";
  std::string body;
  if (numbers.below(4) == 0) line(body, "# " + words(numbers, 18));
  for (int i = 0; i < 9; ++i) line(body, "zor-slapdSetting" + std::to_string(i) + ": " + hexadecimal(numbers, 1));
  for (int i = 0; i < 4; ++i) {
    const std::string unit = words(numbers, 2);  // before the rest: the order within an expression is the compiler's
    line(body, "zor-slapdSuffix: ou=" + unit + " " + hexadecimal(numbers, 1));
  }
  line(body, "zor-slapdDescription: " + words(numbers, 32));
  line(body, "zor-slapdKeyData:: " + base64(numbers, 40));
  std::string ofOld;
  std::string ofNew;
  const std::string changed[] = {"zor-slapdCacheSize: ", "zor-slapdTimeLimit: "};
  for (const std::string& name : changed) {
    const std::string value = hexadecimal(numbers, 1);
    line(ofOld, name + value);
    line(ofNew, name + (kind == Kind::changed ? hexadecimal(numbers, 1) : value));
  }
  if (kind == Kind::changed) line(ofOld, "zor-slapdIncluded: " + words(numbers, 6));
  if (kind != Kind::newOnly) sides.old += "dn: " + dnOf(number, false) + "\n" + head + body + ofOld + "\n";
  if (kind != Kind::oldOnly) sides.now += "dn: " + dnOf(number, spelledOtherwise) + "\n" + head + body + ofNew + "\n";
}

const char kMain[] =
    "version: 1\n\ndn: cn=Configuration\nobjectClass: top\nobjectClass: zor-slapdTop\n"
    "objectClass: zor-slapdConfigEntry\ncn: Configuration\nzor-slapdVersion: ";

// What binds a configuration to one database and one change log, and one schema file that is not the server's own.
const char kServer[] =
    "dn: cn=Front End, cn=Configuration\nobjectClass: top\nobjectClass: zor-slapdFrontEnd\ncn: Front End\n"
    "zor-slapdSetenv: LANG=C.UTF-8\n\n"
    "dn: cn=Schemas, cn=Configuration\nobjectClass: top\nobjectClass: zor-slapdContainer\ncn: Schemas\n\n"
    "dn: cn=ZOR Directory, cn=Schemas, cn=Configuration\nobjectClass: top\nobjectClass: zor-slapdSchema\n"
    "cn: ZOR Directory\nzor-slapdIncludeSchema: /opt/site/etc/V3.site.at\n"
    "zor-slapdSchemaAdditions: /opt/zor/etc/V3.modifiedschema\n\n"
    "dn: cn=RDBM Backends, cn=ZOR Directory, cn=Schemas, cn=Configuration\nobjectClass: top\n"
    "objectClass: zor-slapdContainer\ncn: RDBM Backends\n\n"
    "dn: cn=Directory, cn=RDBM Backends, cn=ZOR Directory, cn=Schemas, cn=Configuration\nobjectClass: top\n"
    "objectClass: zor-slapdRdbmBackend\ncn: Directory\n"
    "zor-slapdPlugin: database libback-rdbm.so rdbm_backend_init\n"
    "zor-slapdPlugin: preoperation  libzorldapcl.so CLInit cn=changelog\n"
    "zor-slapdDbName: zordb\nzor-slapdDbAlias: zordbal\nzor-slapdDbInstance: zorinst\n"
    "zor-slapdDbUserID: zor\nzor-slapdDbLocation: /var/zor\n\n"
    "dn: cn=Change Log, cn=RDBM Backends, cn=ZOR Directory, cn=Schemas, cn=Configuration\nobjectClass: top\n"
    "objectClass: zor-slapdRdbmBackend\ncn: Change Log\n"
    "zor-slapdPlugin: database libback-rdbm.so rdbm_backend_init\nzor-slapdDbInstance: zorinst\n\n";

}  // namespace

void generatePair(std::uint64_t count, std::uint64_t seed, std::ostream& old, std::ostream& now) {
  Numbers numbers(seed);
  old << kMain << "6.0\n\n" << kServer;
  now << kMain << "7.0\n\n" << kServer;
  Sides sides;
  for (std::uint64_t number = 0; number < count; ++number) {
    if (number % kEntriesInGroup == 0) {
      addGroup(sides.old, number / kEntriesInGroup);
      addGroup(sides.now, number / kEntriesInGroup);
    }
    addEntry(sides, number, kindOf(numbers.below(100)), numbers);
    old << sides.old;
    now << sides.now;
    sides.old.clear();
    sides.now.clear();
  }
}
