#include "RemarkList.h"

#include <algorithm>
#include <utility>

namespace cfgstore {

void RemarkList::moveTo(Inspection& to) {
  const auto rank = [](const Remark& remark) { return std::pair(remark.line, remark.kind); };
  std::stable_sort(m_remarks.begin(), m_remarks.end(),
                   [&](const Remark& left, const Remark& right) { return rank(left) < rank(right); });
  to.remarks = std::move(m_remarks);
  for (const RemarkKindInfo& info : remarkKinds()) {
    const std::size_t found = m_found[static_cast<std::size_t>(info.kind)];
    if (found == 0) continue;
    to.counts.push_back({info.kind, found, std::min(found, m_mostPerKind)});
    (info.severity == Severity::error ? to.errors : to.warnings) += found;
  }
}

}  // namespace cfgstore
