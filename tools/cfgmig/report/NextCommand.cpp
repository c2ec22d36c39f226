// NextCommand.cpp -- what the user would run next.

#include <algorithm>
#include <string>
#include <string_view>

#include "report/Report.h"

namespace tool {
namespace {

bool isBeyondPrintable(char character) {
  const auto byte = static_cast<unsigned char>(character);
  return byte < 0x20 || byte >= 0x7f;
}

std::string octal(char character) {
  const auto byte = static_cast<unsigned char>(character);
  constexpr std::string_view kDigits = "01234567";
  return {'\\', kDigits[byte >> 6U], kDigits[(byte >> 3U) & 7U], kDigits[byte & 7U]};
}

// As one word of a shell's command line. What a terminal should not get is written as octal numbers, in the $'...' that
// the usual shells know.
std::string shellWord(std::string_view word) {
  constexpr std::string_view kPlain = "abcdefghijklmnopqrstuvwxyzABCDEFGHIJKLMNOPQRSTUVWXYZ0123456789_-./,:+=@%";
  if (!word.empty() && word.find_first_not_of(kPlain) == std::string_view::npos) return std::string(word);
  const bool needsNumbers = std::any_of(word.begin(), word.end(), isBeyondPrintable);
  std::string text = needsNumbers ? "$'" : "'";
  for (const char character : word) {
    if (isBeyondPrintable(character) || (needsNumbers && (character == '\'' || character == '\\'))) {
      text += octal(character);
    } else if (character == '\'') {
      text += "'\\''";
    } else {
      text += character;
    }
  }
  return text + "'";
}

class CommandText {
 public:
  explicit CommandText(const char* command) : m_text(std::string("cfgmig ") + command) {}
  CommandText& option(const char* name, const std::string& value) {
    if (value.empty()) return *this;
    m_text += ' ';
    m_text += name;
    return argument(value);
  }
  CommandText& argument(const std::string& value) {
    // What begins with a dash would be taken for an option.
    m_text += ' ' + shellWord(value.starts_with('-') ? "./" + value : value);
    return *this;
  }
  const std::string& text() const { return m_text; }

 private:
  std::string m_text;
};

}  // namespace

std::string nextCommand(const Report& report) {
  const InputFile* const oldFile = report.input("old");
  const InputFile* const newFile = report.input("new");
  if (oldFile == nullptr || newFile == nullptr) return {};
  const bool isInPlace = report.options.target == newFile->path;
  switch (report.outcome.kind) {
    case Outcome::Kind::nothingToDo:
      return {};
    case Outcome::Kind::applied: {
      const std::string& before = isInPlace ? report.outcome.backup : newFile->path;
      if (before.empty()) return {};
      CommandText verify("verify");
      verify.option("--old", oldFile->path).option("--before", before).option("--result", report.options.target);
      verify.option("--from", report.options.from);
      if (report.options.schemas) verify.option("--target-dir", report.options.schemas->targetDirectory);
      return verify.text();
    }
    case Outcome::Kind::plan:
      break;
  }
  CommandText apply("apply");
  if (!report.planPath.empty()) return apply.argument(report.planPath).text();
  apply.option("--old", oldFile->path).option("--new", newFile->path).option("--from", report.options.from);
  if (!isInPlace) apply.option("--output", report.options.target);
  if (report.options.schemas) {
    apply.option("--search-dir", report.options.schemas->searchDirectory);
    apply.option("--target-dir", report.options.schemas->targetDirectory);
  }
  return apply.text();
}

}  // namespace tool
