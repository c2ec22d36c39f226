#include "EntryIndex.h"

#include <bit>

namespace cfgstore {

void EntryIndex::reserve(std::size_t count) {
  if ((m_used + count) * 4 <= m_slots.size() * 3) return;
  std::vector<Slot> slots(std::bit_ceil((m_used + count) * 2 + 16));
  slots.swap(m_slots);
  m_used = 0;
  for (const Slot& slot : slots) {
    if (slot.entry == kNoEntry || slot.entry == kRemoved) continue;
    put(slot);
    ++m_used;
  }
}

void EntryIndex::erase(std::string_view key, EntryId entry) noexcept {
  const std::uint32_t hash = hashOf(key);
  for (std::size_t at = hash & mask(); m_slots[at].entry != kNoEntry; at = (at + 1) & mask()) {
    if (m_slots[at].entry == entry) {
      m_slots[at].entry = kRemoved;
      return;
    }
  }
}

}  // namespace cfgstore
