// Every message that listing and merging can write, to the byte. Product tools look for these texts, so misspellings
// ("gerParamValueInfo"), words that do not fit ("setValue" for a deletion) and names of other methods are kept. Whoever
// mends one changes this list, and should not.

#include <gtest/gtest.h>

#include <compare>
#include <ostream>
#include <set>
#include <string>

#include "SmallMigration.h"
#include "TracedMethods.h"

namespace {

using fake::TraceRecord;
using namespace traced;

struct Text {
  unsigned long identifier;  // 0: a message without one
  unsigned long messageClass;
  std::string format;
  auto operator<=>(const Text&) const = default;
};

std::ostream& operator<<(std::ostream& out, const Text& text) {
  return out << std::hex << text.identifier << ' ' << text.messageClass << ' ' << text.format;
}

const std::set<Text> kTexts = {
    {0, 0xc8010000, "ConfigFile::freeParamVals passed a null pointer.\n"},
    {kGetDns.identifier, 0xc8110000, "getDns: could not allocate memory for m_cfgDns\n"},
    {kMergeConfigFiles.identifier, 0xc8110000, "mergeConfigFiles: cfg2Dns is NULL\n"},
    {kMergeConfigFiles.identifier, 0xc8110000, "mergeConfigFiles: failed to allocate memory for newEntries\n"},
    {kMergeConfigFiles.identifier, 0xc8110000, "mergeConfigFiles: failed to allocate memory for updatedEntries\n"},
    {kMergeIn41.identifier, 0xc8110000, "mergeIn41: delValue for %s returned rc=%d\n"},
    {kMergeIn41.identifier, 0xc8110000, "mergeIn41: delValue for %s returned rc=%d, i=%d\n"},
    {kReplAddEntry.identifier, 0xc8110000, "replAddEntry: addValue for %s returned rc=%d\n"},
    {kReplAddEntry.identifier, 0xc8110000, "replAddEntry: addValue for ZOR-SLAPDPENDINGMIGRATION returned rc=%d\n"},
    {kReplAddEntry.identifier, 0xc8110000, "replAddEntry: getParamArrayValueInfo(replica) for %s returned rc=%d\n"},
    {kReplAddEntry.identifier, 0xc8110000, "replAddEntry: getParamValueInfo(replica) for %s returned rc=%d\n"},
    {kReplAddEntry.identifier, 0xc8110000,
     "replAddEntry: addValue(replica) for ZOR-SLAPDMIGRATIONINFO returned rc=%d\n"},
    {kReplAddEntry.identifier, 0xc8110000, "replAddEntry: getParamValueInfo(peer) for %s returned rc=%d\n"},
    {kReplAddEntry.identifier, 0xc8110000, "replAddEntry: addValue(peer) for ZOR-SLAPDMIGRATIONINFO returned rc=%d\n"},
    {kReplAddEntry.identifier, 0xc8110000, "replAddEntry: getParamValueInfo for %s returned rc=%d\n"},
    {kMergeIn51.identifier, 0xc8110000, "mergeIn51: delValue for %s has returned rc=%d\n"},
    {kMergeIn51.identifier, 0xc8110000, "mergeIn51: delValue for %s has returned rc=%d, i=%d\n"},
    {kCheck51.identifier, 0xc8110000, "check51: addValue for %s returned rc=%d\n"},
    {kCheck51.identifier, 0xc8110000, "check51: addValue for ZOR-SLAPDPENDINGMIGRATION returned rc=%d\n"},
    {kCheck51.identifier, 0xc8110000, "check51: addValue for ZOR-SLAPDMIGRATIONINFO returned rc=%d\n"},
    {kMergeIn52.identifier, 0xc8110000, "mergeIn52: delValue for %s has returned rc=%d\n"},
    {kAddTo60.identifier, 0xc8110000, "addTo60: setValue for %s returned rc=%d\n"},
    {kAddTo60.identifier, 0xc8110000, "addTo60: delValue for %s returned rc=%d\n"},
    {kMergeIn60.identifier, 0xc8110000, "mergeIn60: delValue for %s has returned rc=%d\n"},
    {kMergeIn60.identifier, 0xc8110000, "mergeIn60: setValue for %s has returned rc=%d\n"},
    {kMergeIn60.identifier, 0xc8110000, "mergeIn60: getParamArrayValueInfo for %s returned rc=%d\n"},
    {kAddCfgEntry.identifier, 0xc8110000, "addCfgEntry: gerParamValueInfo returned rc=%d\n"},
    {kAddCfgEntry.identifier, 0xc8110000, "addCfgEntry: gerParamArrayValueInfo returned rc=%d\n"},
    {kAddCfgEntry.identifier, 0xc8110000, "addCfgEntry: addEntry(1) returned rc=%d\n"},
    {kAddCfgEntry.identifier, 0xc8110000, "addCfgEntry: addEntry(2) returned rc=%d\n"},
    {kAddCfgEntry.identifier, 0xc8110000, "addCfgEntry: addValue(1) returned rc=%d, i=%d\n"},
    {kMergeCfgEntry.identifier, 0xc8110000, "mergeCfgEntry: getFirstEntry returned rc=%d\n"},
    {kMergeCfgEntry.identifier, 0xc8110000, "mergeCfgEntry: getFirstAttribute returned rc=%d\n"},
    {kMergeCfgEntry.identifier, 0xc8110000, "mergeCfgEntry: getParamArrayValueInfo(1) returned rc=%d\n"},
    {kMergeCfgEntry.identifier, 0xc8110000, "mergeCfgEntry: getParamArrayValueInfo(2) returned rc=%d\n"},
    {kMergeCfgEntry.identifier, 0xc8110000, "mergeCfgEntry: addValue returned rc=%d, i=%d\n"},
    {kMergeCfgEntry.identifier, 0xc8110000, "mergeCfgEntry: addValue returned rc=%d, k=%d\n"},
    {kMergeCfgEntry.identifier, 0xc8110000, "mergeCfgEntry: setValue returned rc=%d\n"},
    {kMergeCfgEntry.identifier, 0xc8110000, "mergeCfgEntry: getNextAttribute returned rc=%d\n"},
    {kMergeChangeDnEntry.identifier, 0xc8110000, "mergeChangeDnEntry: getFirstEntry returned rc=%d\n"},
    {kMergeChangeDnEntry.identifier, 0xc8110000, "mergeChangeDnEntry: getFirstAttribute returned rc=%d\n"},
    {kMergeChangeDnEntry.identifier, 0xc8110000, "mergeChangeDnEntry: getParamArrayValueInfo(1) returned rc=%d\n"},
    {kMergeChangeDnEntry.identifier, 0xc8110000, "mergeChangeDnEntry: getParamArrayValueInfo(2) returned rc=%d\n"},
    {kMergeChangeDnEntry.identifier, 0xc8110000, "mergeChangeDnEntry: addValue returned rc=%d, k=%d\n"},
    {kMergeChangeDnEntry.identifier, 0xc8110000, "mergeChangeDnEntry: setValue returned rc=%d\n"},
    {kMergeChangeDnEntry.identifier, 0xc8110000, "mergeChangeDnEntry: getNextAttribute returned rc=%d\n"},
    {kIsOVOFile.identifier, 0xc80c0000, "isOVOFile: fileName received is NULL\n"},
    {kProcessIncSchema.identifier, 0xc8110000, "processIncSchema: getParamArrayValueInfo for %s returned rc=%d\n"},
    {kProcessIncSchema.identifier, 0xc8110000, "processIncSchema: delValue for %s returned rc=%d, i=%d\n"},
};

void collect(const fake::World& world, std::set<Text>& texts) {
  for (const TraceRecord& record : world.records()) {
    if (record.kind == TraceRecord::Kind::debug || record.kind == TraceRecord::Kind::globalDebug) {
      texts.insert({record.identifier, record.messageClass, record.format});
    }
  }
}

// Migrations in which the n-th call or the n-th allocation fails.
void collectFromMigrations(const SmallPair& pair, std::set<Text>& texts) {
  for (int n = 1;; ++n) {
    SmallMigration migration(pair);
    migration.world.faults().failCall(n, 80);
    migration.run();
    migration.close();
    collect(migration.world, texts);
    if (!migration.world.faults().struck()) {
      break;
    }
  }
  for (int n = 1; n <= 4; ++n) {
    SmallMigration migration(pair);
    migration.world.failAllocation(n);
    migration.run();
    migration.close();
    collect(migration.world, texts);
  }
}

TEST(MessageTexts, AreTheseAndNoOthers) {
  std::set<Text> texts;
  for (const SmallPair& pair : smallPairs()) {
    collectFromMigrations(pair, texts);
  }
  {
    fake::World world;
    ConfigFile config("old", nullptr);
    config.mergeConfigFiles(&config, "6.0");
    config.isOVOFile(nullptr);
    collect(world, texts);
  }
  for (const Text& text : kTexts) {
    EXPECT_TRUE(texts.contains(text)) << "never written: " << text;
  }
  for (const Text& text : texts) {
    EXPECT_TRUE(kTexts.contains(text)) << "not in the list: " << text;
  }
}

}  // namespace
