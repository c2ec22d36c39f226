#include "report/HashedBytes.h"

#include <array>
#include <fstream>

namespace tool {
namespace {

constexpr std::string_view kHexadecimalDigits = "0123456789abcdef";

}  // namespace

bool visitBlocks(const std::string& path, const std::function<void(std::string_view)>& visit) {
  std::ifstream in(path, std::ios::binary);
  if (!in) return false;
  std::array<char, 1U << 16U> buffer{};
  do {
    in.read(buffer.data(), buffer.size());
    visit({buffer.data(), static_cast<std::size_t>(in.gcount())});
  } while (in);
  return in.eof();
}

std::string hexadecimal(std::span<const unsigned char> bytes) {
  std::string text;
  for (const unsigned char byte : bytes) {
    text += kHexadecimalDigits[byte >> 4U];
    text += kHexadecimalDigits[byte & 15U];
  }
  return text;
}

bool isHexadecimal(std::string_view text) {
  return text.find_first_not_of(kHexadecimalDigits) == std::string_view::npos;
}

}  // namespace tool
