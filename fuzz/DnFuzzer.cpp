// DnFuzzer.cpp -- up to three texts, separated by zero bytes, are read as DNs. Whatever they are: what is no DN gives
// null and 0, and what is one keeps the promises of NormalDn.h, alone and compared with the others.

#include <algorithm>
#include <cstdlib>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "CfgUtils.h"
#include "Fuzz.h"
#include "NormalDn.h"

namespace {

using Normal = std::optional<std::string>;

constexpr std::size_t kMostTexts = 3;
constexpr int kMostLevels = 6;  // each of them costs as much as the whole

Normal formatted(const std::string& text) {
  const std::unique_ptr<char, decltype(&std::free)> normal(formatDn(text.c_str()), &std::free);
  return normal ? Normal(normal.get()) : std::nullopt;
}

char otherCase(char c) {
  if (c >= 'a' && c <= 'z') return static_cast<char>(c - 'a' + 'A');
  if (c >= 'A' && c <= 'Z') return static_cast<char>(c - 'A' + 'a');
  return c;
}

std::string hexEscape(char c) {
  constexpr std::string_view kDigits = "0123456789abcdef";
  const auto byte = static_cast<unsigned char>(c);
  return {'\\', kDigits[byte >> 4U], kDigits[byte & 0xfU]};
}

bool isHexDigit(char c) { return (c >= '0' && c <= '9') || (c >= 'A' && c <= 'F'); }

// The byte that the text behind a backslash stands for; `at` moves behind it.
char unescaped(std::string_view normal, std::size_t& at) {
  if (!isHexDigit(normal[at])) return normal[at++];
  const std::string digits(normal.substr(at, 2));
  at += 2;
  return static_cast<char>(std::strtoul(digits.c_str(), nullptr, 16));
}

enum class Spelling { escaped, quoted };

// Another spelling of the same DN: every byte of the values as an escape, or every value in quotes; `;` between RDNs
// and blanks at all separators. Knows the normal form only, in which the first "=" of a pair ends its type and every
// backslash is followed by a special character or two hex digits.
std::string respelled(std::string_view normal, Spelling spelling) {
  std::string text;
  std::size_t at = 0;
  while (at < normal.size()) {
    while (normal[at] != '=') text += otherCase(normal[at++]);
    text += " = ";
    ++at;
    const bool isHex = at < normal.size() && normal[at] == '#';
    if (spelling == Spelling::quoted && !isHex) text += '"';
    while (at < normal.size() && normal[at] != ',' && normal[at] != '+') {
      const bool isEscape = normal[at] == '\\';
      if (isHex) {
        text += otherCase(normal[at++]);
        continue;
      }
      if (isEscape) ++at;
      const char c = isEscape ? unescaped(normal, at) : normal[at++];
      const bool isControl = static_cast<unsigned char>(c) < 0x20;
      const bool needsEscape = spelling == Spelling::escaped || isControl || c == '"' || c == '\\';
      text += needsEscape ? hexEscape(c) : std::string(1, c);
    }
    if (spelling == Spelling::quoted && !isHex) text += '"';
    if (at < normal.size()) text += normal[at++] == ',' ? " ; " : " + ";
  }
  return text;
}

void checkAlone(const std::string& text, const Normal& normal) {
  fuzz::require(cfgstore::normalDn(text) == normal, "formatDn gives what normalDn gives");
  fuzz::require((compareDns(text.c_str(), text.c_str()) != 0) == normal.has_value(), "a DN is the same as itself");
  fuzz::require(compareDns(text.c_str(), nullptr) == 0, "no DN is the same as null");
  fuzz::require(compareDns(nullptr, text.c_str()) == 0, "null is the same as no DN");
  if (!normal) return;
  fuzz::require(formatted(*normal) == normal, "normalising twice is normalising once", *normal);
  fuzz::require(compareDns(text.c_str(), normal->c_str()) != 0, "the normal form names the same entry", *normal);
  fuzz::require(normal->find_first_of(std::string_view("\0\n\r\t", 4)) == std::string::npos,
                "a normal form has no controls", *normal);
}

// The nearest parents are normal forms themselves, and what is below them is within them.
void checkParents(const std::string& normal) {
  fuzz::require(cfgstore::isWithinNormalDn(normal, ""), "everything is within the empty DN", normal);
  std::string_view parent = normal;
  for (int level = 0; level < kMostLevels && !parent.empty(); ++level) {
    fuzz::require(cfgstore::isWithinNormalDn(normal, parent), "an entry is within its parents", parent);
    const std::string_view above = cfgstore::parentOfNormalDn(parent);
    fuzz::require(above.size() < parent.size() && parent.ends_with(above), "a parent is the end of the DN", parent);
    fuzz::require(above.empty() || cfgstore::normalDn(above) == std::string(above), "a parent is a normal form", above);
    fuzz::require(above.empty() || !cfgstore::isWithinNormalDn(above, parent), "no parent is within its child", above);
    parent = above;
  }
}

void checkSpellings(const std::string& text, const std::string& normal) {
  const auto promise = [&](const std::string& other, const std::string& expected, const char* what) {
    fuzz::require(formatted(other) == expected, what, other);
  };
  if (normal.empty()) return;
  std::string swapped = text;
  for (char& c : swapped) c = otherCase(c);
  promise(swapped, normal, "letter case does not count");
  promise("  " + text + " ", normal, "blanks around a DN do not count");
  promise("cn=x , " + text, "CN=X," + normal, "a DN may be below another");
  promise(text + "; cn=x", normal + ",CN=X", "a DN may have another below it");
  promise(respelled(normal, Spelling::escaped), normal, "escapes do not count");
  promise(respelled(normal, Spelling::quoted), normal, "quotes do not count");
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  std::string_view rest = fuzz::viewOf(data, size);
  std::vector<std::string> texts;
  std::vector<Normal> normals;
  while (texts.size() < kMostTexts) {
    const std::size_t end = std::min(rest.find('\0'), rest.size());
    texts.emplace_back(rest.substr(0, end));
    normals.push_back(formatted(texts.back()));
    if (end == rest.size()) break;
    rest.remove_prefix(end + 1);
  }
  fuzz::require(!cfgstore::normalDn(std::string("cn=a\0", 5)), "a zero byte is in no DN");
  fuzz::require(formatDn(nullptr) == nullptr, "null is no DN");
  for (std::size_t i = 0; i < texts.size(); ++i) {
    checkAlone(texts[i], normals[i]);
    if (!normals[i]) continue;
    checkParents(*normals[i]);
    checkSpellings(texts[i], *normals[i]);
  }
  for (std::size_t i = 0; i < texts.size(); ++i) {
    for (std::size_t k = 0; k < texts.size(); ++k) {
      const bool same = normals[i] && normals[i] == normals[k];
      fuzz::require((compareDns(texts[i].c_str(), texts[k].c_str()) != 0) == same,
                    "compareDns is true exactly when formatDn gives equal strings", texts[i] + '\n' + texts[k]);
    }
  }
  return 0;
}
