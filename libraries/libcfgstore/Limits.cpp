#include "Limits.h"

#include <atomic>
#include <charconv>
#include <cstdlib>
#include <limits>
#include <stdexcept>
#include <string>

namespace cfgstore {
namespace {

std::atomic<std::uint64_t> theFileSize{0};  // 0 until the limits are known

Limits fromEnvironment() {
  const char* const text = std::getenv(kFileSizeVariable);
  if (text == nullptr || *text == '\0') return {};
  const auto size = parseSize(text);
  if (!size) {
    throw std::runtime_error(std::string(kFileSizeVariable) +
                             " is no size; expected a number of bytes, or one with K, M or G behind it");
  }
  return {*size};
}

}  // namespace

void setLimits(const Limits& limits) { theFileSize = limits.fileSize; }

Limits limits() {
  const std::uint64_t known = theFileSize;
  if (known != 0) return {known};
  const Limits found = fromEnvironment();
  std::uint64_t expected = 0;
  theFileSize.compare_exchange_strong(expected, found.fileSize);  // not over what was set meanwhile
  return {expected != 0 ? expected : found.fileSize};
}

std::optional<std::uint64_t> parseSize(std::string_view text) {
  constexpr std::string_view kUnits = "KMG";
  std::uint64_t size = 0;
  const char* const end = text.data() + text.size();
  auto [at, error] = std::from_chars(text.data(), end, size);
  if (error != std::errc() || size == 0) return std::nullopt;
  unsigned shift = 0;
  if (at != end) {
    const char unit = *at >= 'a' && *at <= 'z' ? static_cast<char>(*at - 0x20) : *at;
    const auto place = kUnits.find(unit);
    if (place == std::string_view::npos) return std::nullopt;
    shift = static_cast<unsigned>(place + 1) * 10;
    ++at;
  }
  if (at != end || size > std::numeric_limits<std::uint64_t>::max() >> shift) return std::nullopt;
  return size << shift;
}

}  // namespace cfgstore
