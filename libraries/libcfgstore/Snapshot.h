// Snapshot.h -- the whole content of a configuration at one moment, each value with its line.
//
// Entries, attributes and values are numbered from 0 in the order of the file; the numbers are positions in the three
// lists. An attribute that an entry names in several places, or in several letter cases, is one attribute, and stands
// where its first line does; its values follow each other in the order of their lines.

#ifndef CFGMIG_LIBCFGSTORE_SNAPSHOT_H
#define CFGMIG_LIBCFGSTORE_SNAPSHOT_H

#include <atomic>
#include <cstddef>
#include <cstdint>
#include <functional>
#include <memory>
#include <mutex>
#include <span>
#include <string_view>
#include <unordered_map>
#include <vector>

#include "ConfigStore.h"
#include "EntryIndex.h"
#include "TextArena.h"

namespace cfgstore {

struct SnapshotValue {
  std::string_view value;  // decoded; may hold any byte but zero
  std::uint32_t line = 0;  // where its logical line begins, counted from 1 in the text that a save would write
  std::uint32_t attribute : 31 = 0;  // that it is a value of
  bool repeated : 1 = false;         // an equal value of the same attribute stands above it; the store reads it once
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
  std::uint32_t line = 0;            // of its dn line
  std::uint32_t firstAttribute = 0;  // its attributes are those from this one on
  std::uint32_t attributes = 0;      // how many; an entry may have none
  std::uint32_t firstNumber = 0;     // of its values: see Snapshot::numberOf
  std::uint32_t id = 0;              // in the document; of no use to others
  bool setAside = false;             // EqualEntries.h: it has attributes, and they are not here unless it is unfolded
};

// Holds views into the store that it was taken of, which must outlive it. Later edits of that store do not change it.
// Made in time and memory in proportion to the content; values that stand in the file as they are are not copied.
// Several threads may read and search one snapshot at once, as long as none of them unfolds anything.
class Snapshot {
 public:
  static constexpr std::uint32_t kNone = 0xffffffff;

  Snapshot() = default;                // of nothing
  enum class Lines { counted, left };  // left: they are all 0, which takes less time
  explicit Snapshot(ConfigStore& store, Lines wanted = Lines::counted);

  std::span<const SnapshotEntry> entries() const { return m_entries; }
  std::span<const SnapshotAttribute> attributes() const { return m_attributes; }
  std::span<const SnapshotValue> values() const { return m_values; }

  // For a while, gives an entry that is set aside its attributes and values, behind those of all others; what was
  // returned before of attributes() and values() is then not valid any more. One entry at a time; fold takes them away
  // again. Like the searches, this does not count as a change of the snapshot.
  void unfold(std::uint32_t entry) const;
  void fold() const;

  // How many of values() there are without those of an entry that is unfolded.
  std::size_t lastingValues() const { return m_unfolded.entry == kNone ? m_values.size() : m_unfolded.values; }

  // The number of a value among all of the configuration, those included that are set aside.
  std::uint32_t numberOf(std::uint32_t value) const;

  // How many values the entries have that are set aside, in addition to values().
  std::size_t valuesSetAside() const { return m_valuesSetAside; }

  // Calls `visit` with each of them and the name of its attribute, in the order of the file. What it is given is valid
  // during the call. Nothing is kept, so that each call reads them anew.
  void visitSetAside(const std::function<void(std::string_view name, std::string_view value)>& visit) const;

  std::span<const SnapshotAttribute> attributesOf(const SnapshotEntry& entry) const {
    return attributes().subspan(entry.firstAttribute, entry.attributes);
  }
  std::span<const SnapshotValue> valuesOf(const SnapshotAttribute& attribute) const {
    return values().subspan(attribute.firstValue, attribute.values);
  }
  const SnapshotAttribute& attributeOf(const SnapshotValue& value) const { return m_attributes[value.attribute]; }
  const SnapshotEntry& entryOf(const SnapshotAttribute& attribute) const { return m_entries[attribute.entry]; }

  // The number of the entry with this normal DN, or kNone.
  std::uint32_t findEntry(std::string_view normal) const;

  // The number of the attribute of the entry with the number `entry` that has this name, in any letter case, or kNone.
  std::uint32_t findAttribute(std::uint32_t entry, std::string_view name) const;

 private:
  class Builder;
  using Numbers = std::vector<std::uint32_t>;

  // Where a search begins; any number will do. What one thread makes of it is no harm to another.
  class Hint {
   public:
    Hint() = default;
    Hint(Hint&& other) noexcept : m_at(other.get()) {}
    Hint& operator=(Hint&& other) noexcept {
      set(other.get());
      return *this;
    }
    std::uint32_t get() const { return m_at.load(std::memory_order_relaxed); }
    void set(std::uint32_t at) { m_at.store(at, std::memory_order_relaxed); }

   private:
    std::atomic<std::uint32_t> m_at{0};
  };

  // The attributes of entries that have many, sorted by name: made when one is first searched.
  struct ByName {
    std::mutex mutex;
    std::unordered_map<std::uint32_t, Numbers> ofEntry;
  };

  std::uint32_t lookUpEntry(std::string_view normal) const;
  const Numbers& byName(std::uint32_t entry) const;

  mutable std::vector<SnapshotEntry> m_entries;
  mutable std::vector<SnapshotAttribute> m_attributes;
  mutable std::vector<SnapshotValue> m_values;
  const ConfigStore* m_store = nullptr;
  std::size_t m_valuesSetAside = 0;
  TextArena m_arena;  // values that had to be put together or decoded

  struct Unfolded {
    std::uint32_t entry = kNone;
    std::size_t attributes = 0;  // without its own
    std::size_t values = 0;
    TextArena arena;
  };
  mutable Unfolded m_unfolded;

  mutable Hint m_lastFound;  // by findEntry
  EntryIndex m_byNormal;     // of the document: entries by its own numbers
  Numbers m_numbers;         // of entries, by those
  std::unique_ptr<ByName> m_byName = std::make_unique<ByName>();
};

}  // namespace cfgstore

#endif  // CFGMIG_LIBCFGSTORE_SNAPSHOT_H
