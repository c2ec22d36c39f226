// Words.cpp -- what an audit says in words.

#include "audit/Audit.h"

namespace tool {
namespace {

struct ReasonWords {
  AuditReason reason;
  const char* words;
};

constexpr ReasonWords kReasons[] = {
    {AuditReason::held, "the new configuration held it already"},
    {AuditReason::arrived, "it is where the rules bring it"},
    {AuditReason::takenOut, "a rule takes it out"},
    {AuditReason::takenApart, "a rule takes it out, and a part of it is a setting of its own now"},
    {AuditReason::leftBehind, "no rule carries it"},
    {AuditReason::newStands, "the new server's own stands"},
    {AuditReason::pointedAtCopy, "the result names the copy of the schema file"},
    {AuditReason::uncalledFor, "it is there, but no rule brings it there"},
    {AuditReason::missing, "it should be in the result and is not"},
    {AuditReason::second, "the setting has several values, and only the first is carried"},
    {AuditReason::behind, "the transfer of its entry ends at a setting that the new entry lacks"},
    {AuditReason::noTarget, "the new configuration has no entry to carry it to"},
    {AuditReason::givenUp, "its entry lacks a setting without which nothing of it is carried"},
    {AuditReason::notAdded, "its entry has no naming value or no object class, and cannot be added"},
    {AuditReason::notAskedFor, "its entry lacks what the rule asks for first"},
    {AuditReason::overwritten, "another value was put in its place later"},
    {AuditReason::outside, "its entry is not below CN=CONFIGURATION, and no migration looks at it"},
};

struct KindWords {
  Discrepancy::Kind kind;
  const char* words;
};

using Kind = Discrepancy::Kind;

constexpr KindWords kKinds[] = {
    {Kind::missingValue, "a value is missing"},
    {Kind::missingEntry, "an entry is missing"},
    {Kind::notReplaced, "a value that should have been replaced is still there"},
    {Kind::missingNewValue, "a value of the new server is missing"},
    {Kind::missingNewEntry, "an entry of the new server is missing"},
    {Kind::changedValue, "a value is another one"},
    {Kind::uncalledFor, "an old value is there that no rule brings there"},
    {Kind::unexplainedValue, "a value is there that neither configuration explains"},
    {Kind::unexplainedEntry, "an entry is there that neither configuration explains"},
    {Kind::repeatedValue, "a value is there twice"},
    {Kind::otherOrder, "the values are in another order"},
};

}  // namespace

const char* wordsFor(AuditReason reason) {
  for (const ReasonWords& row : kReasons) {
    if (row.reason == reason) return row.words;
  }
  return "";
}

const char* wordsFor(Discrepancy::Kind kind) {
  for (const KindWords& row : kKinds) {
    if (row.kind == kind) return row.words;
  }
  return "";
}

}  // namespace tool
