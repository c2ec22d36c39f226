// FindingFixture.h -- looks for findings of one kind in a sample ledger.

#ifndef CFGMIG_TESTS_TOOL_FINDING_FINDINGFIXTURE_H
#define CFGMIG_TESTS_TOOL_FINDING_FINDINGFIXTURE_H

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <set>
#include <string>
#include <string_view>
#include <vector>

#include "SampleLedger.h"
#include "finding/Finding.h"

namespace finding_test {

inline constexpr char kRoot[] = "dn: CN=CONFIGURATION\nobjectClass: top\ncn: CONFIGURATION\n";

// An entry below the root: "cn=NAME,cn=Configuration" with these lines behind its name.
inline std::string entry(const std::string& name, const std::string& lines) {
  return "\ndn: cn=" + name + ",cn=Configuration\nobjectClass: top\ncn: " + name + "\n" + lines;
}

// The findings of one kind. `files` are the files of this machine.
inline std::vector<tool::Finding> find(const SampleLedger& sample, std::string_view kind,
                                       const std::set<std::string>& files = {}) {
  const tool::FindingContext context{[&](const std::string& path) { return files.count(path) > 0; }};
  std::vector<tool::Finding> found = tool::findAll(sample.ledger(), context);
  std::erase_if(found, [&](const tool::Finding& finding) { return finding.kind->id != kind; });
  return found;
}

// What they say, one each.
inline std::vector<std::string> whats(const SampleLedger& sample, std::string_view kind,
                                      const std::set<std::string>& files = {}) {
  std::vector<std::string> texts;
  for (const tool::Finding& finding : find(sample, kind, files)) texts.push_back(finding.what);
  return texts;
}

// The values that they are about.
inline std::vector<std::string> values(const SampleLedger& sample, std::string_view kind,
                                       const std::set<std::string>& files = {}) {
  std::vector<std::string> texts;
  for (const tool::Finding& finding : find(sample, kind, files)) {
    for (const tool::FindingPlace& place : finding.places) {
      if (place.value == tool::kNoValue) continue;
      texts.emplace_back(tool::snapshotOf(sample.ledger(), place.content).values()[place.value].value);
    }
  }
  return texts;
}

}  // namespace finding_test

#endif  // CFGMIG_TESTS_TOOL_FINDING_FINDINGFIXTURE_H
