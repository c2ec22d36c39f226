// ChangeRecords.h -- what turns one content of a directory into another, in an order in which a server can do it.

#ifndef CFGMIG_TOOL_REPORT_CHANGERECORDS_H
#define CFGMIG_TOOL_REPORT_CHANGERECORDS_H

#include <cstdint>
#include <string_view>
#include <vector>

#include "report/Content.h"

namespace tool {

// A change of one attribute, or the values of one attribute of a new entry.
struct AttributeChange {
  enum class Kind : std::uint8_t {
    add,      // values, to those that are there
    remove,   // values; none: the attribute with all of them
    replace,  // the one value that is there by the one value given
  };

  Kind kind = Kind::add;
  std::string_view attribute;
  Content content = Content::result;  // whose values these are
  std::vector<ValueId> values;        // each text once
};

struct ChangeRecord {
  enum class Kind : std::uint8_t { modify, add, remove };

  Kind kind = Kind::modify;
  std::string_view dn;                   // as the file writes it
  std::vector<AttributeChange> changes;  // in the order in which they are to be done; none for remove
  std::string_view missingParent;        // add: the normal DN of the parent, when no entry of the result is it
};

// The records that make `result` of `before`: entries that change, then new ones, parents before children and those
// that hang in the air last, then entries that go, children before parents. Values are compared byte by byte, and one
// that is listed twice counts once. A setting that has one value on both sides is replaced at one go, since a server
// may refuse a second value, however briefly; otherwise only the values that differ are named, removals first. Views
// point into the snapshots.
std::vector<ChangeRecord> changeRecords(const cfgstore::Snapshot& before, const cfgstore::Snapshot& result);

}  // namespace tool

#endif  // CFGMIG_TOOL_REPORT_CHANGERECORDS_H
