#include "RemarkKind.h"

#include <algorithm>
#include <array>

namespace cfgstore {
namespace {

constexpr Severity kError = Severity::error;
constexpr Severity kWarning = Severity::warning;
using enum RemarkKind;

constexpr std::array kTable = std::to_array<RemarkKindInfo>({
    {unreadable, "unreadable", kError, "The file cannot be opened or read, or is no regular file."},
    {fileTooLarge, "file-too-large", kError, "The file is larger than the limit; it was not read."},
    {zeroByte, "zero-byte", kError, "A line holds a zero byte; a text file has none."},
    {strayReturn, "stray-return", kError, "A carriage return stands inside a line instead of at its end."},
    {lineTooLong, "line-too-long", kError, "A line, folded parts included, is longer than 4 GiB."},
    {tooManyLines, "too-many-lines", kError, "The file has more lines than the store can number."},
    {noColon, "no-colon", kError, "A line has no colon, so it is no attribute with a value."},
    {badName, "bad-name", kError, "What stands before the colon is no attribute name."},
    {nameTooLong, "name-too-long", kError, "An attribute name is longer than 65535 bytes."},
    {urlValue, "url-value", kError, "A value is to be fetched from a URL; a configuration holds its values itself."},
    {badBase64, "bad-base64", kError, "What follows \"::\" is not base64, or breaks off."},
    {zeroByteInValue, "zero-byte-in-value", kError, "A value in base64 holds a zero byte, which no setting can."},
    {nothingToContinue, "nothing-to-continue", kError,
     "A line begins with a blank, but there is none above it to continue."},
    {unknownVersion, "unknown-version", kError, "The version line does not say 1, the only version of LDIF."},
    {misplacedVersion, "misplaced-version", kError,
     "A version line stands between entries, or a second time; it belongs above the first entry."},
    {dnInsideEntry, "dn-inside-entry", kError,
     "A dn line has no empty line above it, so that two entries run together."},
    {badDn, "bad-dn", kError, "The DN of an entry is not a distinguished name."},
    {duplicateEntry, "duplicate-entry", kError, "The entry stands in the file twice, perhaps in different spelling."},
    {missingDn, "missing-dn", kError, "Attributes stand where an entry should begin with its dn line."},
    {changeRecord, "change-record", kError, "The entry is a change record (changetype, control) and not content."},
    {tooManyProblems, "too-many-problems", kError, "There are more errors than are collected; the rest was not read."},

    {byteOrderMark, "byte-order-mark", kWarning,
     "The file begins with a byte-order mark, which many tools cannot read."},
    {mixedLineEnds, "mixed-line-ends", kWarning,
     "Some lines end in CRLF and some in LF; perhaps two files were joined."},
    {noFinalLineEnd, "no-final-line-end", kWarning, "The last line has no line end; perhaps the file was cut off."},
    {blankContinuation, "blank-continuation", kWarning,
     "A line of nothing but blanks continues the line above; it separates no entries."},
    {commentTakesValue, "comment-takes-value", kWarning,
     "A line that begins with a blank stands below a comment and so belongs to the comment, not to the value above "
     "it."},
    {longLine, "long-line", kWarning, "A physical line is longer than 65535 bytes, which many tools cut off."},
    {underscoreInName, "underscore-in-name", kWarning,
     "An attribute name has an underscore, which is not allowed in LDAP."},
    {versionInEntry, "version-in-entry", kWarning,
     "\"version: 1\" stands inside an entry and is read as an attribute of it."},
    {emptyValue, "empty-value", kWarning, "A value is empty."},
    {trailingBlanks, "trailing-blanks", kWarning,
     "A value ends in blanks that an editor does not show; they are part of it."},
    {outerBlanks, "outer-blanks", kWarning, "A value in base64 begins or ends with a blank."},
    {tabAfterColon, "tab-after-colon", kWarning, "A tab follows the colon; unlike blanks it is part of the value."},
    {controlCharacters, "control-characters", kWarning, "A value that is text holds control characters."},
    {notUtf8, "not-utf-8", kWarning, "A DN, or a value that is not in base64, is not UTF-8."},
    {blankAfterBase64, "blank-after-base64", kWarning, "Blanks follow the base64 of a value; they are ignored."},
    {needlessBase64, "needless-base64", kWarning,
     "A value is in base64 that could be plain text, so that nobody can read it."},
    {duplicateValue, "duplicate-value", kWarning, "An attribute has the same value twice; it is read once."},
    {nameSpelling, "name-spelling", kWarning, "An entry writes the name of one attribute in different letter case."},
    {scatteredValues, "scattered-values", kWarning,
     "The values of an attribute stand apart, with other attributes between them."},
    {dnSpelling, "dn-spelling", kWarning, "A DN uses quotes, or semicolons as separators, as only older servers do."},
    {outsideConfiguration, "outside-configuration", kWarning,
     "An entry is not below cn=configuration, so that a migration does not look at it."},
    {parentBelow, "parent-below", kWarning, "An entry stands above its parent entry."},
    {parentMissing, "parent-missing", kWarning, "The parent entry of an entry is not in the file."},
    {noAttributes, "no-attributes", kWarning, "An entry has no attributes."},
    {noObjectClass, "no-object-class", kWarning, "An entry has no object class."},
    {namingValueMissing, "naming-value-missing", kWarning,
     "The value that names an entry in its DN is not among the entry's attributes."},
});

consteval bool isInOrder() {
  for (std::size_t i = 0; i < kTable.size(); ++i) {
    if (static_cast<std::size_t>(kTable[i].kind) != i) return false;
  }
  return kTable.size() == kRemarkKinds;
}
static_assert(isInOrder());

}  // namespace

const std::array<RemarkKindInfo, kRemarkKinds>& remarkKinds() { return kTable; }

const RemarkKindInfo& infoOf(RemarkKind kind) { return kTable[static_cast<std::size_t>(kind)]; }

}  // namespace cfgstore
