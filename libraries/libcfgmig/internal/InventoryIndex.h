// InventoryIndex.h -- where each DN stands in an inventory. It lives for one comparison, so that taking identical
// entries out of the inventory one by one costs no scan each. Not installed.

#ifndef CFGMIG_LIBCFGMIG_INTERNAL_INVENTORYINDEX_H
#define CFGMIG_LIBCFGMIG_INTERNAL_INVENTORYINDEX_H

#include <set>
#include <string_view>
#include <unordered_map>

namespace cfgmig {

// Views the strings of the inventory, which must outlive it.
class InventoryIndex {
 public:
  InventoryIndex(char** dns, int count) {
    m_positions.reserve(static_cast<std::size_t>(count > 0 ? count : 0));
    for (int i = 0; dns != nullptr && i < count; ++i) {
      if (dns[i] != nullptr) m_positions[dns[i]].insert(i);
    }
  }

  bool contains(const char* dn) const { return m_positions.find(dn) != m_positions.end(); }

  // The last position at which `dn` stands, or -1.
  int lastPosition(const char* dn) const {
    const auto found = m_positions.find(dn);
    return found == m_positions.end() ? -1 : *found->second.rbegin();
  }

  // Follows the removal of position `from`, into which the DN at the position `last` (`moved`) has come. `moved` is
  // null when the inventory ends with null slots, as that of a getDns that failed does.
  void move(const char* removed, int from, const char* moved, int last) {
    erase(removed, from);
    if (last == from || moved == nullptr) return;
    erase(moved, last);
    m_positions[moved].insert(from);
  }

 private:
  void erase(const char* dn, int position) {
    const auto found = m_positions.find(dn);
    if (found == m_positions.end()) return;
    found->second.erase(position);
    if (found->second.empty()) m_positions.erase(found);
  }

  std::unordered_map<std::string_view, std::set<int>> m_positions;
};

}  // namespace cfgmig

#endif  // CFGMIG_LIBCFGMIG_INTERNAL_INVENTORYINDEX_H
