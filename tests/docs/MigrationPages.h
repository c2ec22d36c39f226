// MigrationPages.h -- the pages of docs/migration as data: one Row for each line of their tables of settings. A phrase
// that is not known here is an error with file and line, so nothing in a table goes unread.

#ifndef CFGMIG_TESTS_DOCS_MIGRATIONPAGES_H
#define CFGMIG_TESTS_DOCS_MIGRATIONPAGES_H

#include <map>
#include <string>
#include <vector>

#include "Phrases.h"

namespace pages {

struct Row {
  std::string place;  // "6.0.md:31"
  std::string about;  // three of the columns as they are written: "old only | `CN` | any"

  // As in the columns.
  std::string entry;  // a name from the page's table of entries, or one of the three below
  Presence presence;
  Circumstance circumstance;
  Subject subject;
  std::string attribute;  // of the subject, where it names one
  Match match;
  Fate fate;
  GoesTo goesTo;
  std::string by;
  std::string check;
};

inline constexpr const char* kAnyEntry = "any";
inline constexpr const char* kAnyOtherEntry = "any other";
inline constexpr const char* kMovedEntry = "a moved entry";

struct Page {
  std::string version;                     // empty for the page that holds for all
  std::map<std::string, std::string> dns;  // of the entries, by name
  std::vector<Row> rows;
  std::vector<std::string> order;  // the methods that the page numbers
  std::vector<std::string> lists;  // the settings that hold several values

  // The DN that the page gives a name to. Throws for a name that it does not have.
  const std::string& dn(const std::string& name) const;
};

// Reads a page: "6.0", or "README" for what holds for every version. Throws std::runtime_error with file and line.
const Page& page(const std::string& name);

inline constexpr const char* kVersions[] = {"4.1", "5.1", "5.2", "6.0"};
inline constexpr const char* kEveryVersion = "README";

// Whether a setting holds several values, as the page for every version says.
bool isList(const std::string& attribute);

bool sameText(const std::string& left, const std::string& right);  // without regard to letter case

}  // namespace pages

#endif  // CFGMIG_TESTS_DOCS_MIGRATIONPAGES_H
