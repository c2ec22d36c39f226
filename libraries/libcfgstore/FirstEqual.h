// FirstEqual.h -- finds values that stand in a list more than once.

#ifndef CFGMIG_LIBCFGSTORE_FIRSTEQUAL_H
#define CFGMIG_LIBCFGSTORE_FIRSTEQUAL_H

#include <cstdint>
#include <span>
#include <string_view>
#include <vector>

namespace cfgstore {

class FirstEqual {
 public:
  // For each of `values` the position of the first one that equals it, which is its own position if none above does.
  // Valid until the next call. Sorts where there are many, rather than hash: no choice of values makes that slow.
  std::span<const std::uint32_t> find(std::span<const std::string_view> values);

 private:
  std::vector<std::uint32_t> m_first;
  std::vector<std::uint32_t> m_order;
};

}  // namespace cfgstore

#endif  // CFGMIG_LIBCFGSTORE_FIRSTEQUAL_H
