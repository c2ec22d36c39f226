// LdifReader.h -- reads an LDIF content file (RFC 2849) and finds everything that is wrong with it.

#ifndef CFGMIG_LIBCFGSTORE_LDIFREADER_H
#define CFGMIG_LIBCFGSTORE_LDIFREADER_H

#include <cstddef>
#include <functional>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "ConfigStore.h"
#include "EntryIndex.h"
#include "Line.h"
#include "TextArena.h"

namespace cfgstore {

// One entry of a file, as positions in the table of its lines. Its lines are those from `first` up to `end`: the
// comments directly above the dn line, the dn line, attributes and the comments among and directly below them. Blank
// lines, comments between blank lines, and what stands before the first entry belong to no entry.
struct EntrySpan {
  std::size_t first = 0;
  std::size_t dn = 0;
  std::size_t end = 0;
  std::size_t line = 0;     // the number of the dn line, from 1
  std::size_t endLine = 0;  // the number of the line behind its last
  std::string_view normal;  // the DN in normal form
  // The next two are as they are here unless problems were reported:
  bool named = true;  // false when the DN is bad or that of an earlier entry; `normal` is then empty, and there may be
                      // no dn line
  bool faulty = false;  // true when a line below its dn line had a problem; such a line is not in the table
  // Of an entry that was known (KnownEntries): its text, here or where it was cut out, and its number there. None of
  // its lines are in the table.
  std::string_view text = {};
  EntryId known = kNoEntry;
  // Of an entry that was read beside another text which has the same bytes below the dn line (readBeside): its number
  // there, and in `text` all of it here. Up to the dn line its lines are in the table, below it none.
  EntryId alike = kNoEntry;
};

// Entries that were admitted as a part of another text, and are not taken apart again. There is always one that is
// expected next: the text that is read mostly has its entries in the same order.
class KnownEntries {
 public:
  struct Entry {
    EntryId number = kNoEntry;  // kNoEntry: nothing more is expected
    std::string_view text;      // of all of its lines, from the comments above the dn line on; it ends with a line end
    std::string_view normal;    // its DN in normal form
    Line dn;                    // in `text`
    // Where it belongs if it was cut out of the text that is read; else it is there where the text has the same bytes.
    std::optional<std::size_t> cutAt;
  };
  virtual ~KnownEntries() = default;
  virtual const Entry& expected() const = 0;
  virtual void wasThere() = 0;                        // the one that was expected: the next one is, from now on
  virtual void wasRead(std::string_view normal) = 0;  // an entry with this DN was read: what follows it is expected
};

// What was read. Lines and normal DNs are views into the text and the arena.
struct LdifContent {
  std::vector<Line> lines;  // all of the text, in order
  std::vector<EntrySpan> entries;
  EntryIndex index;  // entry i of `entries` under the number i + 1
  std::size_t physicalLines = 0;
  std::vector<Problem> problems;  // in the order of their lines; if there are any, the rest is not to be used
};

// Told of each problem, in the order of their lines; false ends the reading.
using OnProblem = std::function<bool(Problem)>;

constexpr std::size_t kMostProblems = 100;
constexpr std::size_t kMostLines = 0xfffffff0;  // entries and lines are numbered in 32 bits

// Reads `text`, which has to outlive the result, as has `arena`. Reading goes on after a problem, so that one run shows
// what there is to mend, but no further than kMostProblems.
LdifContent readLdif(std::string_view text, TextArena& arena, KnownEntries* known = nullptr);

// Reads one of the halves of a text. Entries that `other` has as well are not taken apart again; it may be null, and
// has no problems. There is going to be room for what a text of `room` bytes holds.
LdifContent readBeside(const LdifContent* other, std::string_view text, TextArena& arena, std::size_t room);

// As readLdif, but with all problems handed to `onProblem` and none in the result. What the result holds is then good
// for looking for more to tell, and for nothing else. A text of more than `mostLines` lines is not read any further.
LdifContent readLdif(std::string_view text, TextArena& arena, const OnProblem& onProblem,
                     std::size_t mostLines = kMostLines, KnownEntries* known = nullptr);

}  // namespace cfgstore

#endif  // CFGMIG_LIBCFGSTORE_LDIFREADER_H
