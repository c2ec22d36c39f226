// IndependenceTest.cpp -- an audit is worth something only as long as it does not use what it audits.

#include <gmock/gmock.h>

#include <filesystem>
#include <fstream>
#include <set>
#include <string>

namespace {

// What the audit may use: the store for reading, the ledger's data for comparing, and the tool's ways to show text.
const std::set<std::string> kMayInclude = {"Snapshot.h", "NormalDn.h",      "Line.h",    "ledger/Ledger.h",
                                           "Secrets.h",  "PrintableText.h", "JsonText.h"};

TEST(AuditIndependence, UsesNeitherTheLibraryNorTheLedgersBuilder) {
  std::size_t files = 0;
  for (const auto& file : std::filesystem::directory_iterator(CFGMIG_AUDIT_SOURCES)) {
    ++files;
    std::ifstream in(file.path());
    for (std::string line; std::getline(in, line);) {
      if (!line.starts_with("#include \"")) continue;
      const std::string name = line.substr(10, line.rfind('"') - 10);
      EXPECT_TRUE(name.starts_with("audit/") || kMayInclude.contains(name)) << file.path() << ": " << name;
    }
  }
  EXPECT_GT(files, 10U);
}

}  // namespace
