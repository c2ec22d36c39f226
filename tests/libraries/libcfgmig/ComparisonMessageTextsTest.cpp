// Every message of the comparison, the clean-up and the schema files, to the byte. Product tools look for these texts,
// so the misspelt "comapreConfigFiles", a "delValue" that reports an advance and "editCLInfo" in a message of another
// method are kept. Whoever mends one changes this list, and should not.

#include <gtest/gtest.h>

#include <compare>
#include <ostream>
#include <set>
#include <string>

#include "StandaloneRun.h"

namespace {

using fake::TraceRecord;
using namespace standalone;

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
    {kCompareConfigFiles.identifier, 0xc8110000, "compareConfigFiles: cfg2Dns is NULL\n"},
    {kCompareConfigFiles.identifier, 0xc8110000, "comapreConfigFiles: memory allocation failed for commonEntries\n"},
    {kCompareEntries.identifier, 0xc8110000, "compareEntries: delValue(1) for %s returned rc=%d, i=%d\n"},
    {kCompareEntries.identifier, 0xc8110000, "compareEntries: delValue(2) for %s returned rc=%d, i=%d\n"},
    {kCompareEntries.identifier, 0xc8110000, "compareEntries: delValue(3) for %s returned rc=%d, i=%d\n"},
    {kCompareEntries.identifier, 0xc8110000, "compareEntries: delValue(4) for %s returned rc=%d, i=%d\n"},
    {kCompareEntries.identifier, 0xc8110000, "compareEntries: delValue for %s returned rc=%d\n"},
    {kProcessPlugins.identifier, 0xc8110000, "processPlugins: delValue for %s returned rc=%d, i=%d\n"},
    {kRemoveDBInfo.identifier, 0xc8110000, "removeDBInfo: delValue for %s returned rc=%d\n"},
    {kRemoveCLInfo.identifier, 0xc8110000, "removeCLInfo: removeEntry for %s returned rc=%d\n"},
    {kRemoveCLInfo.identifier, 0xc8110000, "removeCLInfo: delValue for %s returned rc=%d, i=%d\n"},
    {kEditCLInfo.identifier, 0xc8110000, "editCLInfo: delValue for %s returned rc=%d, i=%d\n"},
    {kEditCLInfo.identifier, 0xc8110000, "editCLInfo: addValue for %s returned rc=%d, i=%d\n"},
    {kRemoveDBInstInfo.identifier, 0xc8110000, "editCLInfo: delValue for %s returned rc=%d\n"},
    {kCheckSchemaFiles.identifier, 0xc8110000, "checkSchemaFiles: memory allocation failed for mFiles\n"},
    {kCheckSchemaFiles.identifier, 0xc8110000, "checkSchemaFiles: memory allocation failed for cFiles\n"},
    {kCheckSchemaFiles.identifier, 0xc8110000, "checkSchemaFiles: memory allocation failed for cFiles[%d]\n"},
    {kCheckSchemaFiles.identifier, 0xc8010000, "checkSchemaFiles: Couldn't find file: %s.\n"},
    {kCheckSchemaFiles.identifier, 0xc8010000, "checkSchemaFiles: Found file: %s.\n"},
    {kCheckSchemaFiles.identifier, 0xc8010000, "checkSchemaFiles: Couldn't copy %s to %s.\n"},
    {kCheckSchemaFiles.identifier, 0xc8110000, "checkSchemaFiles: delValue for %s returned rc=%d\n"},
    {kCheckSchemaFiles.identifier, 0xc8110000, "checkSchemaFiles: addValue for %s returned rc=%d\n"},
};

void collect(const fake::World& world, std::set<Text>& texts) {
  for (const TraceRecord& record : world.records()) {
    if (record.kind == TraceRecord::Kind::debug || record.kind == TraceRecord::Kind::globalDebug) {
      texts.insert({record.identifier, record.messageClass, record.format});
    }
  }
}

TEST(ComparisonMessageTexts, AreTheseAndNoOthers) {
  std::set<Text> texts;
  for (const StandaloneCall& call : kStandaloneCalls) {
    for (int n = 1;; ++n) {  // the n-th call fails
      StandaloneRun run;
      run.world.faults().failCall(n, 80);
      run.run(call);
      run.close();
      collect(run.world, texts);
      if (!run.world.faults().struck()) {
        break;
      }
    }
    for (int n = 1; n <= 4; ++n) {  // the n-th allocation fails
      StandaloneRun run;
      run.world.failAllocation(n);
      run.run(call);
      run.close();
      collect(run.world, texts);
    }
  }
  {
    fake::World world;
    ConfigFile config("old", nullptr);
    config.compareConfigFiles(&config);
    collect(world, texts);
  }
  EXPECT_EQ(texts, kTexts);
}

}  // namespace
