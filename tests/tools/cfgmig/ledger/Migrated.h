// Migrated.h -- two configurations as texts, merged, with the ledger of it.

#ifndef CFGMIG_TESTS_TOOL_LEDGER_MIGRATED_H
#define CFGMIG_TESTS_TOOL_LEDGER_MIGRATED_H

#include <functional>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "ConfigFile.h"
#include "ConfigStore.h"
#include "Workspace.h"
#include "ledger/LedgerBuilder.h"

// The root entry of a configuration.
inline constexpr const char* kMain = "dn: CN=CONFIGURATION\nobjectClass: top\ncn: Configuration\n\n";  // four lines

class Migrated {
 public:
  // Answers 0 for a write that may happen, or the code with which it is refused.
  using Gate = std::function<int(tool::Side side, const cfgstore::Write& write)>;

  // What is done after the merge and before the ledger is closed.
  using Afterwards = std::function<void(ConfigFile& now, tool::LedgerBuilder& builder)>;

  Migrated(const std::string& version, const std::string& oldText, const std::string& newText, const Gate& gate = {},
           const Afterwards& afterwards = {});
  static Migrated ofFiles(const std::string& version, const std::string& oldPath, const std::string& newPath);

  const tool::Ledger& ledger() const { return m_ledger; }
  tool::Ledger& ledger() { return m_ledger; }

  // The result as it would be saved.
  std::string text() const;

  // The old value on this line of its file, in words: "carried 12 by mergeCfgEntry", 12 being the line of its place;
  // without a number when it has no place, without "by" when no method had to do with it.
  std::string fateAt(std::size_t line) const;

  // The words of its reason.
  std::string whyAt(std::size_t line) const;

  // The value of the result on this line: "moved from 7 by mergeIn60", 7 being a line of the old configuration or, for
  // "new", of the new one before.
  std::string originAt(std::size_t line) const;
  std::string originWhyAt(std::size_t line) const;

  // "4 by 5 (mergeCfgEntry)", "6 by none (...)": lines of the new configuration before and of the result.
  std::vector<std::string> replaced() const;

  // The fate of the old entry that begins on this line: "moved to CN=X".
  std::string entryAt(std::size_t line) const;

 private:
  Migrated(const std::string& version, const std::string& oldPath, const std::string& newPath, const Gate& gate,
           const Afterwards& afterwards, std::unique_ptr<Workspace> workspace);

  std::unique_ptr<Workspace> m_workspace;
  std::unique_ptr<ConfigFile> m_old;
  std::unique_ptr<ConfigFile> m_now;
  tool::Ledger m_ledger;
};

#endif  // CFGMIG_TESTS_TOOL_LEDGER_MIGRATED_H
