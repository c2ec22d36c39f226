// Content.h -- what the new configuration should hold: at first what it held before, then what a migration makes of it.
//
// It knows entries, attributes and values, each value with where it comes from, and behaves as a directory does: a
// value is held once, an attribute goes with its last value. Values that are replaced are remembered with what replaced
// them. Every operation takes constant time, or time in proportion to what it changes.

#ifndef CFGMIG_TOOL_AUDIT_CONTENT_H
#define CFGMIG_TOOL_AUDIT_CONTENT_H

#include <cstdint>
#include <string_view>
#include <unordered_map>
#include <vector>

#include "Snapshot.h"
#include "audit/Names.h"

namespace tool::auditing {

using Id = std::uint32_t;

// Up to here looking at each one is faster than a hash table.
inline constexpr Id kFew = 24;
inline constexpr Id kNone = 0xffffffff;

enum class Source : std::uint8_t {
  before,   // the new configuration held it before the migration
  carried,  // from the old configuration, at the same DN and under the same name
  moved,    // from the old configuration, from another DN or name
  rule,     // written by a rule
};

// Where a value comes from: its number in the snapshot before, or in the old one; kNone for a rule's.
struct Provenance {
  Source source = Source::rule;
  Id id = kNone;
};

class Content {
 public:
  struct Value {
    std::string_view text;
    Provenance from;
    Id next = kNone;       // of the same attribute
    bool gone = false;     // it was replaced or taken out
    bool cleaned = false;  // it is gone because a clean-up rewrote it
    Id by = kNone;         // the value that stands in the place of one that is gone
  };
  struct Attribute {
    NameId name = 0;
    Id first = kNone;  // of its values; kNone when it has lost them all and counts as absent
    Id last = kNone;
    Id values = 0;
    Id firstGone = kNone;  // of its values that are gone, linked in the same way
    Id next = kNone;       // of the same entry
  };
  struct Entry {
    std::string_view normal;
    Id before = kNone;  // its number in the snapshot before; kNone for one that the migration adds
    Id first = kNone;   // of its attributes
    Id last = kNone;
    Id attributes = 0;
  };

  // The entries, attributes and values of `before` have the same numbers here. `before` must outlive it, as must all
  // names and texts given to it later.
  Content(const cfgstore::Snapshot& before, Names& names);

  const std::vector<Entry>& entries() const { return m_entries; }
  const Attribute& attribute(Id id) const { return m_attributes[id]; }
  const Value& value(Id id) const { return m_values[id]; }
  std::size_t valueCount() const { return m_values.size(); }

  Id findEntry(std::string_view normal) const;
  Id findAttribute(Id entry, NameId name) const;  // kNone also for one that lost its values
  Id findPlaceOf(Id entry, NameId name) const;    // the attribute also when it has no values left
  Id findValue(Id attribute, std::string_view text) const;

  // Adds an entry that is not there yet, without attributes.
  Id addEntry(std::string_view normal);

  // Makes sure that the attribute holds the value. The value that holds the text now: the one that held it already, or
  // a new one. What the new configuration held before, and what was replaced meanwhile, is its own again.
  Id addValue(Id entry, NameId name, std::string_view text, Provenance from);

  // Makes sure that the attribute holds this value and no other. Of several equal ones the first stays; where none
  // holds the text, the new value takes the place of the first.
  Id setValue(Id entry, NameId name, std::string_view text, Provenance from);

  struct Rewrite {
    Id value;
    std::string_view by;
    Provenance from;
  };
  // Takes the values out of their attribute, all equal ones being listed, and puts those named in their places behind
  // the others, each text once.
  void rewriteValues(Id entry, NameId name, const std::vector<Rewrite>& rewrites);

 private:
  Id newValue(Id attribute, std::string_view text, Provenance from);
  Id takeBack(Id attribute, std::string_view text);
  void append(Id attribute, Id value);
  void retire(Attribute& attribute, Id value, Id by, bool cleaned);

  const cfgstore::Snapshot& m_before;
  std::vector<Entry> m_entries;
  std::vector<Attribute> m_attributes;
  std::vector<Value> m_values;
  std::unordered_map<std::string_view, Id> m_added;

  // For entries with many attributes and attributes with many values, once it is needed.
  mutable std::unordered_map<Id, std::unordered_map<NameId, Id>> m_byName;
  mutable std::unordered_map<Id, std::unordered_map<std::string_view, Id>> m_byText;
};

}  // namespace tool::auditing

#endif  // CFGMIG_TOOL_AUDIT_CONTENT_H
