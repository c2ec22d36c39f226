// RemarkList.h -- collects remarks: counts all of them, and keeps the first of each kind.

#ifndef CFGMIG_LIBCFGSTORE_REMARKLIST_H
#define CFGMIG_LIBCFGSTORE_REMARKLIST_H

#include <array>
#include <cstddef>
#include <vector>

#include "Inspection.h"

namespace cfgstore {

class RemarkList {
 public:
  explicit RemarkList(std::size_t mostPerKind) : m_mostPerKind(mostPerKind) {}

  // Adds a remark. `text` is a function without arguments that gives its text; it is called only if that is kept.
  template <class Text>
  void add(std::size_t line, RemarkKind kind, const Text& text) {
    if (m_found[static_cast<std::size_t>(kind)]++ < m_mostPerKind) m_remarks.push_back({line, kind, text()});
  }

  // Moves remarks and counts to `to`, which has none yet.
  void moveTo(Inspection& to);

 private:
  std::size_t m_mostPerKind;
  std::array<std::size_t, kRemarkKinds> m_found{};
  std::vector<Remark> m_remarks;
};

}  // namespace cfgstore

#endif  // CFGMIG_LIBCFGSTORE_REMARKLIST_H
