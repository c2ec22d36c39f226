// ExampleLedgerTest.cpp -- the ledgers of the shipped examples, as the tables of docs/migration and the examples' own
// pages have them. The numbers were counted by hand in the old files, table line by table line.

#include <gmock/gmock.h>

#include <fstream>
#include <iterator>
#include <map>
#include <string>

#include "Migrated.h"

namespace {

using testing::Contains;
using testing::HasSubstr;
using testing::IsEmpty;
using tool::ValueFate;
using tool::ValueOrigin;

std::string example(const std::string& file) { return std::string(CFGMIG_EXAMPLES) + "/" + file; }

Migrated migrated(const std::string& version, const std::string& oldFile = "old.ldif") {
  return Migrated::ofFiles(version, example(version + "/" + oldFile), example(version + "/new.ldif"));
}

// The line of the old file, or of the result, whose text begins with `text`.
std::size_t lineOf(const std::string& content, const std::string& text, std::size_t after = 0) {
  std::size_t line = 1;
  for (std::size_t at = 0; at < content.size(); ++line) {
    if (line > after && content.compare(at, text.size(), text) == 0) return line;
    at = content.find('\n', at) + 1;
    if (at == 0) break;
  }
  throw std::logic_error("no line begins with " + text);
}

struct Old {
  explicit Old(const std::string& file) : text(read(example(file))) {}
  std::size_t operator()(const std::string& begins, const std::string& afterDn = "") const {
    return lineOf(text, begins, afterDn.empty() ? 0 : lineOf(text, afterDn));
  }
  static std::string read(const std::string& path);
  std::string text;
};

std::string Old::read(const std::string& path) {
  std::ifstream file(path, std::ios::binary);
  return {std::istreambuf_iterator<char>(file), {}};
}

// How many old values have a fate by a method: "dropped mergeIn60" -> 15.
std::map<std::string, int> sumsOf(const tool::Ledger& ledger) {
  std::map<std::string, int> sums;
  for (const tool::OldValueRow& row : ledger.oldValues) {
    ++sums[std::string(tool::nameOf(row.fate)) + " " + ledger.reasonOf(row.reason).method];
  }
  return sums;
}

using Sums = std::map<std::string, int>;

TEST(ExampleLedger, Of41) {
  const Migrated merged = migrated("4.1");
  EXPECT_THAT(sumErrors(merged.ledger()), IsEmpty());
  EXPECT_EQ(sumsOf(merged.ledger()), (Sums{
                                         {"same mergeCfgEntry", 154},
                                         {"carried addCfgEntry", 86},
                                         {"carried mergeCfgEntry", 76},
                                         {"dropped addTo41", 10},        // the whole change log
                                         {"dropped mergeIn41", 7},       // five database settings, two plug-ins
                                         {"kept-new mergeCfgEntry", 2},  // the version, a notification class
                                     }));
  EXPECT_EQ(merged.ledger().count(ValueOrigin::addedByRule), 1U) << "TOP of the night shift";
  const Old old("4.1/old.ldif");
  const std::string directory = "dn: cn=DIRECTORY, cn=RDBM BACKENDS";
  EXPECT_EQ(merged.fateAt(old("zor-slapdDbUserPW:", directory)), "dropped by mergeIn41");
  EXPECT_EQ(merged.fateAt(old("zor-slapdPlugin: preoperation  libzorldapcl.so CLInit", directory)),
            "dropped by mergeIn41");
  EXPECT_THAT(merged.fateAt(old("zor-slapdPlugin: preoperation /opt/zor/4.1/lib/libldapcl.so", directory)),
              HasSubstr("carried"));
  EXPECT_EQ(merged.entryAt(old("dn: cn=CHANGE LOG")), "left");
}

TEST(ExampleLedger, Of51WithAReplica) {
  const Migrated merged = migrated("5.1");
  EXPECT_THAT(sumErrors(merged.ledger()), IsEmpty());
  const Sums sums = sumsOf(merged.ledger());
  EXPECT_EQ(sums.at("dropped mergeIn51"), 10) << "nine of the main entry, one cache setting";
  EXPECT_EQ(sums.at("carried replAddEntry"), 3) << "master, password, referral";
  // The schema entry: 14 includes, 2 additions, the check. The back end: 2 suffixes, 2 plug-ins, 2 cached attributes,
  // 7 database settings. The change log: 5.
  EXPECT_EQ(sums.at("moved mergeChangeDnEntry"), 14 + 2 + 1 + 2 + 2 + 2 + 7 + 5);
  EXPECT_EQ(merged.ledger().count(ValueFate::lost), 0U);
  const Old old("5.1/old.ldif");
  EXPECT_EQ(merged.fateAt(old("zor-slapdReplicaNote:")), "dropped by replAddEntry");
  EXPECT_EQ(merged.fateAt(old("zor-slapdSetenv: RDBM_FCACHE_SIZE")), "dropped by mergeIn51");
  EXPECT_THAT(merged.fateAt(old("zor-slapdSetenv: ACLCACHE")), HasSubstr("carried"));
  EXPECT_EQ(merged.entryAt(old("dn: cn=ZOR Halvorn")), "moved to CN=ZOR DIRECTORY,CN=SCHEMAS,CN=CONFIGURATION");
  const std::string result = merged.text();
  for (const char* directory : {"/opt/zor/5.1/etc/", "/opt/zor/7.0/etc/"}) {
    EXPECT_THAT(merged.originWhyAt(lineOf(result, std::string("zor-slapdIncludeSchema: ") + directory + "V3.user.at")),
                HasSubstr(std::string(tool::kSchemaFileNamedTwice)));
  }
}

TEST(ExampleLedger, Of51WithAPeer) {
  const Migrated merged = migrated("5.1", "old-peer.ldif");
  EXPECT_THAT(sumErrors(merged.ledger()), IsEmpty());
  const Sums sums = sumsOf(merged.ledger());
  EXPECT_EQ(sums.at("moved replAddEntry"), 2) << "the peer's name and password";
  EXPECT_EQ(sums.count("carried replAddEntry"), 0U);
  EXPECT_EQ(merged.ledger().count(ValueOrigin::addedByRule), 7U) << "TOP, and six of the master server entry";
}

TEST(ExampleLedger, Of51WithAFormerMaster) {
  const Migrated merged = migrated("5.1", "old-former-master.ldif");
  EXPECT_THAT(sumErrors(merged.ledger()), IsEmpty());
  const std::string result = merged.text();
  EXPECT_EQ(merged.originAt(lineOf(result, "ZOR-SLAPDMIGRATIONINFO: 4.1 MASTER")), "added-by-rule by check51");
  EXPECT_EQ(merged.ledger().count(ValueOrigin::addedByRule), 7U);
}

TEST(ExampleLedger, Of52) {
  const Migrated merged = migrated("5.2");
  EXPECT_THAT(sumErrors(merged.ledger()), IsEmpty());
  EXPECT_EQ(sumsOf(merged.ledger()).at("dropped mergeIn52"), 4) << "three of the main entry, one of the back end";
  EXPECT_EQ(merged.ledger().count(ValueFate::lost), 0U);
  const std::string result = merged.text();
  EXPECT_EQ(merged.originAt(lineOf(result, "zor-slapdChangeLogMaxAge: 0")), "added-by-rule by addTo52");
}

TEST(ExampleLedger, Of60) {
  const Migrated merged = migrated("6.0");
  EXPECT_THAT(sumErrors(merged.ledger()), IsEmpty());
  EXPECT_EQ(sumsOf(merged.ledger()),
            (Sums{
                {"same mergeCfgEntry", 156},
                {"same mergeChangeDnEntry", 4},
                {"carried addCfgEntry", 74},  // and one TOP: 75 in the added entries
                {"carried mergeCfgEntry", 56},
                {"moved addTo60", 1},                      // zor-audit of the administrators
                {"moved mergeChangeDnEntry", 5},           // of the audit entry
                {"moved mergeIn60", 2},                    // log level, pending changes
                {"dropped addTo60", 10},                   // three and seven of the audit entries
                {"dropped mergeIn60", 7 + 3 + 3 + 2 + 1},  // main, back end, daemon, SSL, schema
                {"dropped processIncSchema", 12},
                {"kept-new mergeCfgEntry", 2},       // the version, acmeNotifyBackend
                {"kept-new mergeChangeDnEntry", 2},  // name and an object class of the audit
            }));
  // 140 values are written that the new configuration did not hold, 47 of them in the place of another.
  EXPECT_EQ(merged.ledger().count(ValueOrigin::carried) + merged.ledger().count(ValueOrigin::moved) +
                merged.ledger().count(ValueOrigin::addedByRule),
            140U);
  EXPECT_EQ(merged.ledger().replaced.size(), 47U);
  const Old old("6.0/old.ldif");
  const std::string result = merged.text();
  EXPECT_EQ(merged.fateAt(old("zor-slapdSysLogLevel:")),
            "moved " + std::to_string(lineOf(result, "zor-slapdLogOptions: h")) + " by mergeIn60");
  EXPECT_THAT(merged.originAt(lineOf(result, "zor-slapdReplMaxErrors: 25")), HasSubstr("added-by-rule from"));
  EXPECT_EQ(merged.fateAt(old("zor-auditVersion:", "dn: CN=AUDIT")), "dropped by addTo60");
}

}  // namespace
