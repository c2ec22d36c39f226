#include "FirstEqual.h"

#include <algorithm>
#include <numeric>

namespace cfgstore {
namespace {

constexpr std::size_t kFew = 16;

}  // namespace

std::span<const std::uint32_t> FirstEqual::find(std::span<const std::string_view> values) {
  m_first.resize(values.size());
  if (values.size() <= kFew) {
    for (std::uint32_t i = 0; i < values.size(); ++i) {
      m_first[i] = static_cast<std::uint32_t>(std::find(values.begin(), values.end(), values[i]) - values.begin());
    }
    return m_first;
  }
  m_order.resize(values.size());
  std::iota(m_order.begin(), m_order.end(), 0U);
  std::sort(m_order.begin(), m_order.end(), [&](std::uint32_t left, std::uint32_t right) {
    const int compared = values[left].compare(values[right]);
    return compared != 0 ? compared < 0 : left < right;
  });
  m_first[m_order[0]] = m_order[0];
  for (std::size_t i = 1; i < m_order.size(); ++i) {
    const bool equal = values[m_order[i]] == values[m_order[i - 1]];
    m_first[m_order[i]] = equal ? m_first[m_order[i - 1]] : m_order[i];
  }
  return m_first;
}

}  // namespace cfgstore
