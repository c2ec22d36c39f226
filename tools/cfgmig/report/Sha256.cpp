#include "report/Sha256.h"

#include <openssl/crypto.h>
#include <openssl/evp.h>

#include <array>
#include <memory>
#include <new>

#include "report/HashedBytes.h"

namespace tool {
namespace {

// No settings file of the machine, no tables of what else the library can do: reading them takes longer than the
// fingerprint of a small file.
void startLibrary() {
  static const bool done = OPENSSL_init_crypto(OPENSSL_INIT_NO_LOAD_CONFIG | OPENSSL_INIT_NO_ADD_ALL_CIPHERS |
                                                   OPENSSL_INIT_NO_ADD_ALL_DIGESTS,
                                               nullptr) == 1;
  if (!done) throw std::bad_alloc();
}

// A digest that is being made.
class Digest {
 public:
  Digest() : m_context((startLibrary(), EVP_MD_CTX_new()), EVP_MD_CTX_free) {
    if (!m_context || EVP_DigestInit_ex(m_context.get(), EVP_sha256(), nullptr) != 1) throw std::bad_alloc();
  }
  void add(std::string_view bytes) { EVP_DigestUpdate(m_context.get(), bytes.data(), bytes.size()); }
  std::string hexadecimal() {
    std::array<unsigned char, EVP_MAX_MD_SIZE> digest{};
    unsigned size = 0;
    EVP_DigestFinal_ex(m_context.get(), digest.data(), &size);
    return tool::hexadecimal(std::span(digest).first(size));
  }

 private:
  std::unique_ptr<EVP_MD_CTX, void (*)(EVP_MD_CTX*)> m_context;
};

}  // namespace

std::string sha256(std::string_view bytes) { return sha256(std::span(&bytes, 1)); }

std::string sha256(std::span<const std::string_view> pieces) {
  Digest digest;
  for (const std::string_view piece : pieces) digest.add(piece);
  return digest.hexadecimal();
}

std::string sha256OfFile(const std::string& path) {
  Digest digest;
  return visitBlocks(path, [&digest](std::string_view block) { digest.add(block); }) ? digest.hexadecimal() : "";
}

bool isSha256(std::string_view text) { return text.size() == 64 && isHexadecimal(text); }

}  // namespace tool
