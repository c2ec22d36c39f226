// RemarkKind.h -- all that can be said about an LDIF file: what keeps it from being read, and what is suspicious.
//
// The identifiers are for programs and for searching, and never change once published. docs/decisions/store.md says why
// the borderline cases are as they are.

#ifndef CFGMIG_LIBCFGSTORE_REMARKKIND_H
#define CFGMIG_LIBCFGSTORE_REMARKKIND_H

#include <array>
#include <cstddef>
#include <cstdint>
#include <string_view>

namespace cfgstore {

// An error keeps the whole file from being opened. A warning is about what is legal, is read in the way that the remark
// says, and is kept byte for byte.
enum class Severity : std::uint8_t { error, warning };

// In the order of the table in RemarkKind.cpp: errors first.
enum class RemarkKind : std::uint8_t {
  unreadable,
  fileTooLarge,
  zeroByte,
  strayReturn,
  lineTooLong,
  tooManyLines,
  noColon,
  badName,
  nameTooLong,
  urlValue,
  badBase64,
  zeroByteInValue,
  nothingToContinue,
  unknownVersion,
  misplacedVersion,
  dnInsideEntry,
  badDn,
  duplicateEntry,
  missingDn,
  changeRecord,
  tooManyProblems,

  byteOrderMark,
  mixedLineEnds,
  noFinalLineEnd,
  blankContinuation,
  commentTakesValue,
  longLine,
  underscoreInName,
  versionInEntry,
  emptyValue,
  trailingBlanks,
  outerBlanks,
  tabAfterColon,
  controlCharacters,
  notUtf8,
  blankAfterBase64,
  needlessBase64,
  duplicateValue,
  nameSpelling,
  scatteredValues,
  dnSpelling,
  outsideConfiguration,
  parentBelow,
  parentMissing,
  noAttributes,
  noObjectClass,
  namingValueMissing
};

// How many there are.
constexpr std::size_t kRemarkKinds = static_cast<std::size_t>(RemarkKind::namingValueMissing) + 1;

struct RemarkKindInfo {
  RemarkKind kind;
  std::string_view id;  // "duplicate-value"
  Severity severity;
  std::string_view meaning;  // one sentence for people who look the identifier up
};

// All kinds, in the order of the enumeration.
const std::array<RemarkKindInfo, kRemarkKinds>& remarkKinds();

// The one of a kind.
const RemarkKindInfo& infoOf(RemarkKind kind);

}  // namespace cfgstore

#endif  // CFGMIG_LIBCFGSTORE_REMARKKIND_H
