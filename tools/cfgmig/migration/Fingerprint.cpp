#include "migration/Fingerprint.h"

#include <array>
#include <fstream>

#define XXH_INLINE_ALL
#include <xxhash.h>

namespace tool {
namespace {

constexpr std::string_view kKind = "xxh3:";
constexpr std::size_t kDigits = 32;

// A fingerprint that is being made.
class Hash {
 public:
  Hash() { XXH3_128bits_reset(&m_state); }
  void add(std::string_view bytes) { XXH3_128bits_update(&m_state, bytes.data(), bytes.size()); }
  std::string text() const {
    XXH128_canonical_t digest{};
    XXH128_canonicalFromHash(&digest, XXH3_128bits_digest(&m_state));
    constexpr std::string_view kHexadecimal = "0123456789abcdef";
    std::string text(kKind);
    for (const unsigned char byte : digest.digest) {
      text += kHexadecimal[byte >> 4U];
      text += kHexadecimal[byte & 15U];
    }
    return text;
  }

 private:
  XXH3_state_t m_state;
};

}  // namespace

std::string fingerprint(std::string_view bytes) { return fingerprint(std::span(&bytes, 1)); }

std::string fingerprint(std::span<const std::string_view> pieces) {
  Hash hash;
  for (const std::string_view piece : pieces) hash.add(piece);
  return hash.text();
}

std::string fingerprintOfFile(const std::string& path) {
  std::ifstream in(path, std::ios::binary);
  if (!in) return {};
  Hash hash;
  std::array<char, 1U << 16U> buffer{};
  do {
    in.read(buffer.data(), buffer.size());
    hash.add({buffer.data(), static_cast<std::size_t>(in.gcount())});
  } while (in);
  if (!in.eof()) return {};
  return hash.text();
}

bool isFingerprint(std::string_view text) {
  return text.size() == kKind.size() + kDigits && text.starts_with(kKind) &&
         text.find_first_not_of("0123456789abcdef", kKind.size()) == std::string_view::npos;
}

}  // namespace tool
