// EntryIndex.h -- finds entries by the normal form of their DN.

#ifndef CFGMIG_LIBCFGSTORE_ENTRYINDEX_H
#define CFGMIG_LIBCFGSTORE_ENTRYINDEX_H

#include <cstddef>
#include <cstdint>
#include <string_view>
#include <vector>

#include "TextHash.h"

namespace cfgstore {

using EntryId = std::uint32_t;
constexpr EntryId kNoEntry = 0xffffffff;

// An open-addressing table of hashes and entry numbers. The keys stay with the entries: the caller passes a function
// that gives the normal DN of an entry.
class EntryIndex {
 public:
  template <class KeyOf>
  EntryId find(std::string_view key, const KeyOf& keyOf) const {
    if (m_slots.empty()) return kNoEntry;
    const std::uint32_t hash = hashOf(key);
    for (std::size_t at = hash & mask();; at = (at + 1) & mask()) {
      const Slot& slot = m_slots[at];
      if (slot.entry == kNoEntry) return kNoEntry;
      if (slot.hash == hash && keyOf(slot.entry) == key) return slot.entry;
    }
  }

  // The entry with this key; without one, `entry` is added with it and returned.
  template <class KeyOf>
  EntryId findOrInsert(std::string_view key, EntryId entry, const KeyOf& keyOf) {
    reserve(1);
    const std::uint32_t hash = hashOf(key);
    std::size_t at = hash & mask();
    for (; m_slots[at].entry != kNoEntry; at = (at + 1) & mask()) {
      if (m_slots[at].hash == hash && keyOf(m_slots[at].entry) == key) return m_slots[at].entry;
    }
    m_slots[at] = {hash, entry};
    ++m_used;
    return entry;
  }

  // Makes room for `count` entries more, so that as many calls of insert cannot fail.
  void reserve(std::size_t count);

  // Adds an entry whose key is not in the table yet. Without room reserved for it, it may throw.
  void insert(std::string_view key, EntryId entry) {
    reserve(1);
    put({hashOf(key), entry});
    ++m_used;
  }

  // Adds all of `other`, whose entry i is entry i + `offset` here. False, and nothing is to be looked up any more, if
  // an entry of `other` has the key of one that is here. `keyOf` is for the numbers here.
  template <class KeyOf>
  bool append(const EntryIndex& other, EntryId offset, const KeyOf& keyOf) {
    reserve(other.m_used);
    for (Slot slot : other.m_slots) {
      if (slot.entry == kNoEntry) continue;
      slot.entry += offset;
      std::size_t at = slot.hash & mask();
      for (; m_slots[at].entry != kNoEntry; at = (at + 1) & mask()) {
        if (m_slots[at].hash == slot.hash && keyOf(m_slots[at].entry) == keyOf(slot.entry)) return false;
      }
      m_slots[at] = slot;
      ++m_used;
    }
    return true;
  }

  void erase(std::string_view key, EntryId entry) noexcept;

 private:
  struct Slot {
    std::uint32_t hash = 0;
    EntryId entry = kNoEntry;
  };

  static std::uint32_t hashOf(std::string_view key) {
    const std::uint64_t hash = hashOfText(key);
    return static_cast<std::uint32_t>(hash ^ hash >> 32);
  }
  std::size_t mask() const { return m_slots.size() - 1; }
  void put(Slot slot) noexcept {
    std::size_t at = slot.hash & mask();
    while (m_slots[at].entry != kNoEntry) at = (at + 1) & mask();
    m_slots[at] = slot;
  }

  std::vector<Slot> m_slots;  // a power of two, or none
  std::size_t m_used = 0;     // slots that are not empty; at most 3 of 4
};

}  // namespace cfgstore

#endif  // CFGMIG_LIBCFGSTORE_ENTRYINDEX_H
