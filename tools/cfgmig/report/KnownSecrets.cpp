#include "report/KnownSecrets.h"

#include <algorithm>

#include "PrintableText.h"

namespace tool {
namespace {

constexpr std::size_t kLeastEqual = 6;   // bytes of a secret that a value is compared with
constexpr std::size_t kLeastWithin = 8;  // of one that is looked for inside a value
constexpr std::size_t kLeastInText = 4;  // of one that is replaced inside the words of a text

std::size_t beginningOf(std::string_view text) {
  return static_cast<std::size_t>(static_cast<unsigned char>(text[0])) << 8U |
         static_cast<std::size_t>(static_cast<unsigned char>(text[1]));
}

bool isOfWord(char character) {
  return (character >= 'a' && character <= 'z') || (character >= 'A' && character <= 'Z') ||
         (character >= '0' && character <= '9');
}

bool standsAlone(std::string_view text, std::size_t position, std::size_t length) {
  const std::size_t end = position + length;
  return (position == 0 || !isOfWord(text[position - 1])) && (end == text.size() || !isOfWord(text[end]));
}

std::size_t commonLength(std::string_view left, std::string_view right) {
  const std::size_t most = std::min(left.size(), right.size());
  std::size_t length = 0;
  while (length < most && left[length] == right[length]) ++length;
  return length;
}

}  // namespace

void KnownSecrets::add(std::string_view secret) {
  if (secret.empty()) return;
  m_secrets.emplace_back(secret);
  std::string printed = ldtr::printable(secret);
  if (printed != secret) m_secrets.push_back(std::move(printed));
}

void KnownSecrets::finish() {
  std::sort(m_secrets.begin(), m_secrets.end());
  m_secrets.erase(std::unique(m_secrets.begin(), m_secrets.end()), m_secrets.end());
  for (const std::string& secret : m_secrets) {
    if (secret.size() >= 2) m_beginnings.set(beginningOf(secret));
  }
}

// The length of the longest secret that stands at `position`, 0 for none. The secret just before the place of the text
// in the order is the longest one, or what it has in common with the text limits what is left to look for.
std::size_t KnownSecrets::longestAt(std::string_view text, std::size_t position) const {
  std::string_view rest = text.substr(position);
  // Where no longer one begins, only a secret of one byte can stand.
  if (rest.size() >= 2 && !m_beginnings.test(beginningOf(rest))) rest = rest.substr(0, 1);
  while (!rest.empty()) {
    const auto after = std::upper_bound(m_secrets.begin(), m_secrets.end(), rest);
    if (after == m_secrets.begin()) return 0;
    const std::string& candidate = *(after - 1);
    const std::size_t common = commonLength(candidate, rest);
    if (common == candidate.size()) return common;
    rest = rest.substr(0, common);
  }
  return 0;
}

bool KnownSecrets::isRepeatedIn(std::string_view value) const {
  if (m_secrets.empty() || value.size() < kLeastEqual) return false;
  for (std::size_t position = 0; position + kLeastEqual <= value.size(); ++position) {
    if (!m_beginnings.test(beginningOf(value.substr(position)))) continue;
    const std::size_t length = longestAt(value, position);
    if (length >= kLeastWithin || (length >= kLeastEqual && length == value.size())) return true;
  }
  return false;
}

std::string KnownSecrets::replacedIn(std::string_view text, std::string_view replacement) const {
  if (m_secrets.empty()) return std::string(text);
  std::string replaced;
  for (std::size_t position = 0; position < text.size();) {
    const std::size_t length = longestAt(text, position);
    if (length >= kLeastInText || (length > 0 && standsAlone(text, position, length))) {
      replaced += replacement;
      position += length;
    } else {
      replaced += text[position++];
    }
  }
  return replaced;
}

}  // namespace tool
