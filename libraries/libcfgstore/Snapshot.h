// Snapshot.h -- the whole content of a configuration at one moment, each value with its line.
//
// Entries, attributes and values are numbered from 0 in the order of the file; the numbers are positions in the three
// lists. An attribute that an entry names in several places, or in several letter cases, is one attribute, and stands
// where its first line does; its values follow each other in the order of their lines.

#ifndef CFGMIG_LIBCFGSTORE_SNAPSHOT_H
#define CFGMIG_LIBCFGSTORE_SNAPSHOT_H

#include <cstddef>
#include <cstdint>
#include <span>
#include <string_view>
#include <unordered_map>
#include <vector>

#include "ConfigStore.h"
#include "EntryIndex.h"
#include "TextArena.h"

namespace cfgstore {

struct SnapshotValue {
  std::string_view value;       // decoded; may hold any byte but zero
  std::size_t line = 0;         // where its logical line begins, counted from 1 in the text that a save would write
  std::uint32_t attribute = 0;  // that it is a value of
  bool repeated = false;        // an equal value of the same attribute stands above it; the store reads it once
};

struct SnapshotAttribute {
  std::string_view name;         // as its first line writes it
  std::uint32_t entry = 0;       // that it belongs to
  std::uint32_t firstValue = 0;  // its values are those from this one on
  std::uint32_t values = 0;      // how many, repeated ones included; at least one
};

struct SnapshotEntry {
  std::string_view dn;               // as the file writes it
  std::string_view normal;           // in normal form; no other entry has it
  std::size_t line = 0;              // of its dn line
  std::uint32_t firstAttribute = 0;  // its attributes are those from this one on
  std::uint32_t attributes = 0;      // how many; an entry may have none
};

// Holds views into the store that it was taken of, which must outlive it. Later edits of that store do not change it.
// Made in time and memory in proportion to the content; values that stand in the file as they are are not copied. The
// searches build tables when they are first needed, so that one snapshot must not be searched by two threads at once.
class Snapshot {
 public:
  static constexpr std::uint32_t kNone = 0xffffffff;

  Snapshot() = default;  // of nothing
  explicit Snapshot(ConfigStore& store);

  std::span<const SnapshotEntry> entries() const { return m_entries; }
  std::span<const SnapshotAttribute> attributes() const { return m_attributes; }
  std::span<const SnapshotValue> values() const { return m_values; }

  std::span<const SnapshotAttribute> attributesOf(const SnapshotEntry& entry) const {
    return attributes().subspan(entry.firstAttribute, entry.attributes);
  }
  std::span<const SnapshotValue> valuesOf(const SnapshotAttribute& attribute) const {
    return values().subspan(attribute.firstValue, attribute.values);
  }
  const SnapshotAttribute& attributeOf(const SnapshotValue& value) const { return m_attributes[value.attribute]; }
  const SnapshotEntry& entryOf(const SnapshotAttribute& attribute) const { return m_entries[attribute.entry]; }

  // The number of the entry with this normal DN, or kNone. The first call takes time in proportion to the entries.
  std::uint32_t findEntry(std::string_view normal) const;

  // The number of the attribute of the entry with the number `entry` that has this name, in any letter case, or kNone.
  std::uint32_t findAttribute(std::uint32_t entry, std::string_view name) const;

 private:
  class Builder;
  using Numbers = std::vector<std::uint32_t>;

  const Numbers& byName(std::uint32_t entry) const;

  std::vector<SnapshotEntry> m_entries;
  std::vector<SnapshotAttribute> m_attributes;
  std::vector<SnapshotValue> m_values;
  TextArena m_arena;  // values that had to be unfolded or decoded

  mutable EntryIndex m_byNormal;  // filled by the first findEntry
  mutable bool m_hasByNormal = false;
  mutable std::unordered_map<std::uint32_t, Numbers> m_byName;  // of entries with many attributes: them, sorted by name
};

}  // namespace cfgstore

#endif  // CFGMIG_LIBCFGSTORE_SNAPSHOT_H
