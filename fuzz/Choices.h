// Choices.h -- decisions taken from the bytes of an input. When they are used up, every decision is the first choice.

#ifndef CFGMIG_FUZZ_CHOICES_H
#define CFGMIG_FUZZ_CHOICES_H

#include <algorithm>
#include <cstddef>
#include <span>
#include <string>
#include <string_view>

namespace fuzz {

class Choices {
 public:
  explicit Choices(std::string_view bytes) : m_rest(bytes) {}

  bool empty() const { return m_rest.empty(); }

  std::size_t byte() {
    if (m_rest.empty()) return 0;
    const auto value = static_cast<unsigned char>(m_rest.front());
    m_rest.remove_prefix(1);
    return value;
  }

  // A number below `count`, which must not be 0.
  std::size_t below(std::size_t count) { return byte() % count; }

  template <class Range>
  const auto& of(const Range& range) {
    return *std::next(std::begin(range), static_cast<std::ptrdiff_t>(below(std::size(range))));
  }

  // Up to 63 bytes, and no zero bytes: what a C string can hold.
  std::string text() {
    const std::size_t size = std::min<std::size_t>(byte() % 64, m_rest.size());
    std::string text(m_rest.substr(0, size));
    m_rest.remove_prefix(size);
    std::erase(text, '\0');
    return text;
  }

 private:
  std::string_view m_rest;
};

}  // namespace fuzz

#endif  // CFGMIG_FUZZ_CHOICES_H
