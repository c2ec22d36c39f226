#include "report/Sha256.h"

#include <openssl/evp.h>

#include <array>
#include <fstream>
#include <memory>
#include <new>

namespace tool {
namespace {

using Digest = std::array<unsigned char, EVP_MAX_MD_SIZE>;

std::string hexadecimal(const Digest& digest, unsigned size) {
  constexpr std::string_view kDigits = "0123456789abcdef";
  std::string text;
  for (std::size_t i = 0; i < size; ++i) {
    text += kDigits[digest[i] >> 4U];
    text += kDigits[digest[i] & 15U];
  }
  return text;
}

}  // namespace

std::string sha256(std::string_view bytes) {
  Digest digest{};
  unsigned size = 0;
  if (EVP_Digest(bytes.data(), bytes.size(), digest.data(), &size, EVP_sha256(), nullptr) != 1) throw std::bad_alloc();
  return hexadecimal(digest, size);
}

std::string sha256OfFile(const std::string& path) {
  std::ifstream in(path, std::ios::binary);
  if (!in) return {};
  const std::unique_ptr<EVP_MD_CTX, void (*)(EVP_MD_CTX*)> context(EVP_MD_CTX_new(), EVP_MD_CTX_free);
  if (!context || EVP_DigestInit_ex(context.get(), EVP_sha256(), nullptr) != 1) throw std::bad_alloc();
  std::array<char, 1U << 16U> buffer{};
  do {
    in.read(buffer.data(), buffer.size());
    EVP_DigestUpdate(context.get(), buffer.data(), static_cast<std::size_t>(in.gcount()));
  } while (in);
  if (!in.eof()) return {};
  Digest digest{};
  unsigned size = 0;
  EVP_DigestFinal_ex(context.get(), digest.data(), &size);
  return hexadecimal(digest, size);
}

bool isSha256(std::string_view text) {
  return text.size() == 64 && text.find_first_not_of("0123456789abcdef") == std::string_view::npos;
}

}  // namespace tool
