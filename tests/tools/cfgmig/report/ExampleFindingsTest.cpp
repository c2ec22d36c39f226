// What is found in real merges of the shipped examples, on a machine that has none of the files they name.

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <map>

#include "../ExamplePath.h"
#include "SampleReport.h"

namespace {

using testing::IsEmpty;

using Counts = std::map<std::string, std::size_t>;

Counts findingsOf(const ExampleSource& source) {
  const ExampleMerge merge(source.version, source.oldFile);
  const tool::Report report = merge.report();
  EXPECT_THAT(report.mismatches, IsEmpty()) << source.oldFile;
  Counts counts;
  for (const tool::Finding& finding : report.findings) ++counts[finding.kind->id];
  return counts;
}

TEST(ExampleFindings, OfA41ServerNameTheOldServersPlugInsAndFiles) {
  EXPECT_EQ(findingsOf({"4.1", "4.1/old.ldif"}), (Counts{{"sealed-by-old-server", 6},
                                                         {"plugin-of-old-installation", 2},
                                                         {"schema-file-missing", 1},
                                                         {"plugin-library-missing", 3},
                                                         {"path-into-old-installation", 5},
                                                         {"schema-file-twice", 1},
                                                         {"object-class-not-carried", 1}}));
}

TEST(ExampleFindings, OfA51ServerNameTheMasterEntryAndTheEntryInTheAir) {
  const Counts expected{{"sealed-by-old-server", 8}, {"schema-file-missing", 1},     {"entry-without-parent", 1},
                        {"migration-pending", 1},    {"plugin-library-missing", 3},  {"path-into-old-installation", 4},
                        {"schema-file-twice", 1},    {"object-class-not-carried", 1}};
  EXPECT_EQ(findingsOf({"5.1", "5.1/old.ldif"}), expected);
  EXPECT_EQ(findingsOf({"5.1", "5.1/old-peer.ldif"}), expected);
  Counts former = expected;
  former["sealed-by-old-server"] = 7;  // a former master has no password of another server
  EXPECT_EQ(findingsOf({"5.1", "5.1/old-former-master.ldif"}), former);
}

TEST(ExampleFindings, OfA52ServerNameItsLogs) {
  EXPECT_EQ(findingsOf({"5.2", "5.2/old.ldif"}), (Counts{{"sealed-by-old-server", 8},
                                                         {"schema-file-missing", 1},
                                                         {"plugin-library-missing", 3},
                                                         {"path-into-old-installation", 6},
                                                         {"schema-file-twice", 1},
                                                         {"object-class-not-carried", 1}}));
}

TEST(ExampleFindings, OfA60ServerNameNoFileOfTheOldInstallation) {
  EXPECT_EQ(findingsOf({"6.0", "6.0/old.ldif"}), (Counts{{"sealed-by-old-server", 8},
                                                         {"schema-file-missing", 1},
                                                         {"plugin-library-missing", 3},
                                                         {"object-class-not-carried", 2}}));
}

}  // namespace
