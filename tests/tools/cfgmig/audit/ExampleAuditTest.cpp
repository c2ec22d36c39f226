// ExampleAuditTest.cpp -- the shipped examples, which were worked out by hand, and every way of editing one line of
// their results.

#include <gmock/gmock.h>

#include <fstream>
#include <iterator>
#include <sstream>

#include "Audited.h"
#include "ExamplePath.h"
#include "audit/UntouchedText.h"

namespace {

using testing::ElementsAre;
using testing::IsEmpty;

struct Example {
  const char* version;
  const char* oldFile;
  const char* newFile;
  const char* merged;
};
constexpr Example kExamples[] = {
    {"4.1", "4.1/old.ldif", "4.1/new.ldif", "4.1/merged.ldif"},
    {"5.1", "5.1/old.ldif", "5.1/new.ldif", "5.1/merged.ldif"},
    {"5.1", "5.1/old-peer.ldif", "5.1/new.ldif", "5.1/merged-peer.ldif"},
    {"5.1", "5.1/old-former-master.ldif", "5.1/new.ldif", "5.1/merged-former-master.ldif"},
    {"5.2", "5.2/old.ldif", "5.2/new.ldif", "5.2/merged.ldif"},
    {"6.0", "6.0/old.ldif", "6.0/new.ldif", "6.0/merged.ldif"},
};

std::string read(const char* name) {
  std::ifstream file(examplePath(name), std::ios::binary);
  std::string text((std::istreambuf_iterator<char>(file)), std::istreambuf_iterator<char>());
  EXPECT_FALSE(text.empty()) << name;
  return text;
}

std::vector<std::string> linesOf(const std::string& text) {
  std::vector<std::string> lines;
  std::istringstream in(text);
  for (std::string line; std::getline(in, line);) lines.push_back(line);
  return lines;
}

std::string joined(const std::vector<std::string>& lines) {
  std::string text;
  for (const std::string& line : lines) text += line + "\n";
  return text;
}

// Whether a line is one of a value: neither empty, nor a comment or the rest of one, nor the version of the format.
bool isOfValue(const std::vector<std::string>& lines, std::size_t line) {
  while (line > 0 && lines[line].starts_with(" ")) --line;
  return !lines[line].empty() && lines[line][0] != '#' && !lines[line].starts_with("version:");
}

class ExampleAudit : public testing::TestWithParam<Example> {
 protected:
  ExampleAudit()
      : old(read(GetParam().oldFile)),
        before(read(GetParam().newFile)),
        merged(read(GetParam().merged)),
        oldStore(workspace.write("old.ldif", old)),
        beforeStore(workspace.write("new.ldif", before)),
        oldContent(oldStore),
        beforeContent(beforeStore) {}

  enum class Notices { nothing, text, values, unreadable };

  Notices audit(const std::string& result) const {
    try {
      cfgstore::ConfigStore resultStore(workspace.write("result.ldif", result));
      const cfgstore::Snapshot content(resultStore);
      const tool::Audit audit = tool::audit(oldContent, beforeContent, content, GetParam().version);
      if (!audit.discrepancies.empty()) return Notices::values;
      const tool::TextDifferences text = tool::compareUntouched(before, result, beforeContent, content, audit);
      return text.isEmpty() ? Notices::nothing : Notices::text;
    } catch (const cfgstore::OpenError&) {
      return Notices::unreadable;
    }
  }

  const std::string old;
  const std::string before;
  const std::string merged;
  const Workspace workspace;
  cfgstore::ConfigStore oldStore;
  cfgstore::ConfigStore beforeStore;
  const cfgstore::Snapshot oldContent;
  const cfgstore::Snapshot beforeContent;
};

TEST_P(ExampleAudit, AgreesWithWhatWasWorkedOutByHand) {
  const Audited audited(GetParam().version, old, before, merged);
  EXPECT_THAT(discrepanciesOf(audited), IsEmpty());
  EXPECT_EQ(audited.audit.unexplained, 0U);
  EXPECT_EQ(audited.audit.schemaFilesLeft.size(), 0U);
  const tool::TextDifferences text =
      tool::compareUntouched(before, merged, audited.before, audited.result, audited.audit);
  EXPECT_THAT(text.missing, IsEmpty());
  EXPECT_THAT(text.added, IsEmpty());
}

TEST_P(ExampleAudit, AgreesWithWhatTheLibraryMakesOfIt) {
  const Audited audited(GetParam().version, old, before, migrated(GetParam().version, old, before));
  EXPECT_THAT(discrepanciesOf(audited), IsEmpty());
}

TEST_P(ExampleAudit, NoticesEveryLineThatIsTakenOut) {
  const std::vector<std::string> lines = linesOf(merged);
  for (std::size_t i = 0; i < lines.size(); ++i) {
    if (lines[i].empty()) continue;
    std::vector<std::string> edited = lines;
    edited.erase(edited.begin() + static_cast<std::ptrdiff_t>(i));
    const Notices notices = audit(joined(edited));
    EXPECT_NE(notices, Notices::nothing) << "line " << i + 1 << ": " << lines[i];
    EXPECT_EQ(notices == Notices::text, !isOfValue(lines, i)) << "line " << i + 1 << ": " << lines[i];
  }
}

TEST_P(ExampleAudit, NoticesEveryLineThatIsWrittenTwice) {
  const std::vector<std::string> lines = linesOf(merged);
  for (std::size_t i = 0; i < lines.size(); ++i) {
    if (lines[i].empty()) continue;
    std::vector<std::string> edited = lines;
    edited.insert(edited.begin() + static_cast<std::ptrdiff_t>(i), lines[i]);
    const Notices notices = audit(joined(edited));
    EXPECT_NE(notices, Notices::nothing) << "line " << i + 1 << ": " << lines[i];
    if (isOfValue(lines, i)) {
      EXPECT_NE(notices, Notices::text) << "line " << i + 1 << ": " << lines[i];
    }
  }
}

TEST_P(ExampleAudit, NoticesEveryLineThatIsChanged) {
  const std::vector<std::string> lines = linesOf(merged);
  for (std::size_t i = 0; i < lines.size(); ++i) {
    if (lines[i].empty()) continue;
    std::vector<std::string> edited = lines;
    edited[i].insert(edited[i].size() - 1, "x");
    EXPECT_NE(audit(joined(edited)), Notices::nothing) << "line " << i + 1 << ": " << lines[i];
  }
}

TEST_P(ExampleAudit, NoticesAValueInAnyEntryThatNobodyExplains) {
  const std::vector<std::string> lines = linesOf(merged);
  for (std::size_t i = 0; i < lines.size(); ++i) {
    if (!lines[i].starts_with("cn:")) continue;
    std::vector<std::string> edited = lines;
    edited.insert(edited.begin() + static_cast<std::ptrdiff_t>(i), "zor-slapdAddedLater: 1");
    EXPECT_EQ(audit(joined(edited)), Notices::values) << "line " << i + 1;
  }
}

TEST_P(ExampleAudit, NoticesTwoValuesOfASettingThatChangedPlaces) {
  const std::vector<std::string> lines = linesOf(merged);
  std::size_t tried = 0;
  for (std::size_t i = 0; i + 1 < lines.size(); ++i) {
    const std::string name = lines[i].substr(0, lines[i].find(':'));
    const bool isPair = !name.empty() && name[0] != ' ' && name[0] != '#' && lines[i + 1].starts_with(name + ":") &&
                        (i + 2 == lines.size() || !lines[i + 2].starts_with(" "));
    if (!isPair || lines[i] == lines[i + 1]) continue;
    std::vector<std::string> edited = lines;
    std::swap(edited[i], edited[i + 1]);
    EXPECT_EQ(audit(joined(edited)), Notices::values) << "line " << i + 1 << ": " << lines[i];
    ++tried;
  }
  EXPECT_GT(tried, 10U);
}

// An entry with the empty line behind it.
TEST_P(ExampleAudit, NoticesEveryEntryThatIsTakenOutOrAdded) {
  const std::vector<std::string> lines = linesOf(merged);
  for (std::size_t i = 0; i < lines.size(); ++i) {
    if (!lines[i].starts_with("dn:")) continue;
    std::size_t end = i;
    while (end < lines.size() && !lines[end].empty()) ++end;
    std::vector<std::string> edited = lines;
    edited.erase(edited.begin() + static_cast<std::ptrdiff_t>(i), edited.begin() + static_cast<std::ptrdiff_t>(end));
    EXPECT_EQ(audit(joined(edited)), Notices::values) << "line " << i + 1 << ": " << lines[i];
  }
  EXPECT_EQ(audit(merged + "\ndn: cn=Added Later,cn=Configuration\nobjectClass: top\ncn: Added Later\n"),
            Notices::values);
}

TEST_P(ExampleAudit, ANewConfigurationThatWasNotMigratedDiffers) {
  const Audited audited(GetParam().version, old, before, before);
  EXPECT_NE(audited.audit.verdict(), tool::AuditVerdict::agrees);
}

TEST_P(ExampleAudit, AMigrationByTheRulesOfAnotherVersionDiffers) {
  for (const std::string version : {"4.1", "5.1", "5.2", "6.0"}) {
    if (version == GetParam().version) continue;
    const Audited audited(version, old, before, merged);
    EXPECT_THAT(discrepanciesOf(audited), testing::Not(IsEmpty())) << version;
  }
}

std::string nameOfExample(const testing::TestParamInfo<Example>& info) {
  std::string name = info.param.merged;
  for (char& letter : name) {
    if (std::isalnum(static_cast<unsigned char>(letter)) == 0) letter = '_';
  }
  return name;
}

INSTANTIATE_TEST_SUITE_P(Examples, ExampleAudit, testing::ValuesIn(kExamples), nameOfExample);

}  // namespace
