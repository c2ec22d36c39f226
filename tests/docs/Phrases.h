// Phrases.h -- the phrases that the tables of docs/migration are written in.

#ifndef CFGMIG_TESTS_DOCS_PHRASES_H
#define CFGMIG_TESTS_DOCS_PHRASES_H

#include <string>
#include <vector>

namespace pages {

// "When": which configuration has the entry.
enum class Presence { oldOnly, newOnly, both, neither };
enum class Circumstance { none, nothingThere, replica, peer, unrelated, replicaWithoutPassword, peerWithoutPassword };

// "Setting".
enum class Subject {
  entry,           // "the entry"
  entryWithout,    // "the entry, without `A`"
  attribute,       // "`A`"
  onlyValue,       // "`A`, the only one"
  list,            // "a list"
  listInBoth,      // "a list, in both"
  otherInBoth,     // "any other, in both"
  otherInOld,      // "any other, in the old entry"
  otherBehindOld,  // "any other, behind one in the old entry"
  otherInNew,      // "any other, in the new entry"
  other,           // "any other"
};

// "Value".
struct Match {
  enum class Kind {
    none,             // empty: the row is about an entry
    any,              // "any"
    theFirst,         // "the first"
    aLaterOne,        // "a later one"
    exactly,          // "exactly `x`"
    inAnyCase,        // "`x` in any letter case"
    firstContaining,  // "the first that contains `x` or `y`"
    laterContaining,  // "a later one that contains `x` or `y`"
    eachContaining,   // "each that contains `x` or `y`"
    rest,             // "in the first that contains `x`, what follows `y`"
    other,            // "any other"
    literal,          // "`x`, `y`": what a rule writes
  };
  Kind kind;
  std::vector<std::string> texts;
};

enum class Fate { carried, moved, dropped, keptNew, leftBehind, lost, addedByRule, merged, added, built };

// "Goes to". Empty where nothing goes anywhere.
struct GoesTo {
  std::string attribute;  // "`A` of name"
  std::string entry;      // "name"
  bool theSame = false;   // "the same": the setting of that name in the entry that the entry is moved to
};

struct When {
  Presence presence;
  Circumstance circumstance;
};
struct Setting {
  Subject subject;
  std::string attribute;
};

// Each throws std::runtime_error for a phrase that it does not know.
When whenFrom(const std::string& phrase);
Setting settingFrom(const std::string& phrase);
Match matchFrom(const std::string& phrase);
Fate fateFrom(const std::string& phrase);
GoesTo goesToFrom(const std::string& phrase);
std::string nameFrom(const std::string& phrase);  // "`x`"

}  // namespace pages

#endif  // CFGMIG_TESTS_DOCS_PHRASES_H
