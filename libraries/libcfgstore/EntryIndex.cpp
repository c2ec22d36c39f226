#include "EntryIndex.h"

#include <bit>

namespace cfgstore {

void EntryIndex::reserve(std::size_t count) {
  if ((m_used + count) * 4 <= m_slots.size() * 3) return;
  std::vector<Slot> slots(std::bit_ceil((m_used + count) * 2 + 16));
  slots.swap(m_slots);
  m_used = 0;
  for (const Slot& slot : slots) {
    if (slot.entry == kNoEntry) continue;
    put(slot);
    ++m_used;
  }
}

// No mark is left where the entry was, or many removals would make every search longer: the slots that follow are moved
// up as far as a search still finds them.
void EntryIndex::erase(std::string_view key, EntryId entry) noexcept {
  std::size_t hole = hashOf(key) & mask();
  for (; m_slots[hole].entry != entry; hole = (hole + 1) & mask()) {
    if (m_slots[hole].entry == kNoEntry) return;
  }
  for (std::size_t at = (hole + 1) & mask(); m_slots[at].entry != kNoEntry; at = (at + 1) & mask()) {
    const std::size_t fromHome = (at - m_slots[at].hash) & mask();
    if (fromHome < ((at - hole) & mask())) continue;
    m_slots[hole] = m_slots[at];
    hole = at;
  }
  m_slots[hole] = Slot();
  --m_used;
}

}  // namespace cfgstore
