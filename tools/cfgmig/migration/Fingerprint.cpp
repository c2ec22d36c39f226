#include "migration/Fingerprint.h"

#include "report/HashedBytes.h"

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
    return std::string(kKind) + hexadecimal(digest.digest);
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
  Hash hash;
  return visitBlocks(path, [&hash](std::string_view block) { hash.add(block); }) ? hash.text() : "";
}

bool isFingerprint(std::string_view text) {
  return text.size() == kKind.size() + kDigits && text.starts_with(kKind) && isHexadecimal(text.substr(kKind.size()));
}

}  // namespace tool
