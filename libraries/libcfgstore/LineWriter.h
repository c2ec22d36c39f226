// LineWriter.h -- writes new lines the way the rest of the file is written.

#ifndef CFGMIG_LIBCFGSTORE_LINEWRITER_H
#define CFGMIG_LIBCFGSTORE_LINEWRITER_H

#include <cstddef>
#include <span>
#include <string>
#include <string_view>

#include "Line.h"

namespace cfgstore {

// How a file is written, by what most of its lines do.
struct Habits {
  std::string_view lineEnd = "\n";
  std::size_t foldColumn = 76;  // bytes in a physical line without its end; 0 if long lines are not folded
  bool blankAfterColon = true;
  bool rawUtf8 = false;  // text beyond ASCII is written as it is rather than in base64
  std::size_t emptyLinesBetweenEntries = 1;

  static Habits of(std::span<const Line> lines);
};

// One logical line for `name` and `value`, line end included. The value is in base64 where a plain one would be read
// back as something else: with a blank, a colon or '<' in front, a blank at the end, bytes that are no text.
std::string writeLine(const Habits& habits, std::string_view name, std::string_view value);

// The empty lines between two entries.
std::string writeSeparator(const Habits& habits);

}  // namespace cfgstore

#endif  // CFGMIG_LIBCFGSTORE_LINEWRITER_H
