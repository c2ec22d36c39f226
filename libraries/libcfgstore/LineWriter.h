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
  static Habits of(std::span<const std::span<const Line>> parts);  // of a file
};

// True when `value` has to be written in base64, because a plain one would be read back as something else or is no
// text: with a blank, a colon or '<' in front, a blank at the end, control characters, bytes that are not UTF-8, and
// also text beyond ASCII in a file that has none in plain.
bool needsBase64(const Habits& habits, std::string_view value);

// One logical line for `name` and `value`, line end included; added to `to`, or by itself.
void appendLine(std::string& to, const Habits& habits, std::string_view name, std::string_view value);
std::string writeLine(const Habits& habits, std::string_view name, std::string_view value);

// The empty lines between two entries.
std::string writeSeparator(const Habits& habits);

}  // namespace cfgstore

#endif  // CFGMIG_LIBCFGSTORE_LINEWRITER_H
