#include "DnGenerators.h"

#include <algorithm>
#include <cctype>
#include <ostream>
#include <random>

#include "DnUnicode.h"

namespace cfgstore::testing {
namespace {

// The ways of writing one type.
const std::vector<std::vector<std::string>> kTypes = {
    {"cn", "2.5.4.3", "OID.2.5.4.3", "oid.2.5.4.3"},
    {"ou", "2.5.4.11", "OID.2.5.4.11"},
    {"uid", "0.9.2342.19200300.100.1.1"},
    {"dc", "0.9.2342.19200300.100.1.25"},
    {"1.2.3.4", "oid.1.2.3.4"},
    {"zor-x1"},
};

// What values are put together from: plain and special ASCII, letters of several scripts, marks, bytes that are no
// UTF-8, controls. What does not count in comparisons has a letter behind it, so that a blank before it stays away from
// marks.
const std::vector<std::string> kPieces = {"a",       "Z",      "front",  "End",        "0",       "7F",     ",",
                                          "+",       "\"",     "\\",     "<",          ">",       ";",      "=",
                                          "#",       "/",      " x",     " #",         "\u00e4",  "\u00c4", "\u00df",
                                          "\u0130",  "\u03c2", "\u212a", "\U0001f600", "\t",      "\x01k",  "\x7fk",
                                          "\u00adk", "\u00a0", "\uff0c", "\uff03",     "e\u0301", "\u0308", " \u0308"};
const std::vector<std::string> kBrokenPieces = {"\xff", "\xc3", "\x80", "\xed\xa0\x80", std::string("\0k", 2)};

// Writes DNs; every decision is a number that follows from the seed.
class Speller {
 public:
  explicit Speller(std::uint32_t seed) : m_random(seed) {}

  std::string dn(const ModelDn& dn) {
    std::string text = blanks();
    for (const ModelRdn& one : dn) {
      if (&one != &dn.front()) text += (oneIn(3) ? ";" : ",") + blanks();
      text += rdn(one) + blanks();
    }
    return dn.empty() ? "" : text;
  }

 private:
  bool oneIn(std::uint32_t n) { return below(n) == 0; }
  std::uint32_t below(std::uint32_t n) { return static_cast<std::uint32_t>(m_random() % n); }
  std::string blanks() { return std::string(oneIn(2) ? 0 : below(3), ' '); }

  std::string rdn(ModelRdn pairs) {
    std::shuffle(pairs.begin(), pairs.end(), m_random);
    std::string text;
    for (const ModelPair& one : pairs) {
      if (!text.empty()) text += "+" + blanks();
      const auto& names = kTypes[one.type];
      text += anyCase(names[below(static_cast<std::uint32_t>(names.size()))]) + blanks() + "=" + blanks();
      text += value(anyBlanks(anyCase(one.value))) + blanks();
    }
    return text;
  }

  std::string anyCase(std::string text) {
    for (char& c : text) {
      const auto byte = static_cast<unsigned char>(c);
      if (byte < 0x80) c = static_cast<char>(oneIn(2) ? std::toupper(byte) : std::tolower(byte));
    }
    return text;
  }

  // More blanks where there is one, and some at the ends, but not before what may be a combining mark.
  std::string anyBlanks(const std::string& text) {
    std::string result;
    const auto mayTakeBlankBefore = [&](std::size_t at) {
      return at == text.size() || static_cast<unsigned char>(text[at]) < 0x80;
    };
    if (mayTakeBlankBefore(0)) result += blanks();
    for (std::size_t at = 0; at < text.size(); ++at) {
      result += text[at];
      if (text[at] == ' ' && mayTakeBlankBefore(at + 1)) result += blanks();
    }
    return result + blanks();
  }

  std::string value(const std::string& bytes) {
    if (oneIn(8) && codePointsOf(bytes) && bytes.size() < 128) return berUtf8String(bytes);
    const bool quoted = oneIn(4);
    std::string text = quoted ? "\"" : "";
    for (std::size_t at = 0; at < bytes.size(); ++at) {
      const bool atAnEnd = at == 0 || at + 1 == bytes.size();
      text += character(bytes[at], quoted, atAnEnd);
    }
    return quoted ? text + "\"" : text;
  }

  std::string character(char c, bool quoted, bool atAnEnd) {
    const auto byte = static_cast<unsigned char>(c);
    if (byte < 0x20 || oneIn(8)) return "\\" + hex(byte);
    const std::string_view special = quoted ? "\"\\" : ",+\"\\<>;";
    const bool blank = c == ' ' || c == '#';
    const bool mustEscape = special.find(c) != std::string_view::npos || (!quoted && atAnEnd && blank);
    const bool mayEscape = std::string_view(",+\"\\<>;=# ").find(c) != std::string_view::npos;
    return mustEscape || (mayEscape && oneIn(3)) ? std::string{'\\', c} : std::string(1, c);
  }

  std::string hex(unsigned char byte) {
    constexpr std::string_view kDigits = "0123456789abcdef";
    return anyCase({kDigits[byte >> 4U], kDigits[byte & 0xfU]});
  }

  std::string berUtf8String(const std::string& bytes) {
    std::string text = "#" + hex(0x0c) + hex(static_cast<unsigned char>(bytes.size()));
    for (const char c : bytes) text += hex(static_cast<unsigned char>(c));
    return text;
  }

  std::mt19937 m_random;
};

std::string withoutOptionalBlanks(const std::string& text) {
  std::string result;
  for (const char c : text) {
    if (c != ' ' || (!result.empty() && result.back() != ' ')) result += c;
  }
  if (result.ends_with(' ')) result.pop_back();
  return result;
}

rc::Gen<std::string> valueOf(rc::Gen<std::string> piece) {
  return rc::gen::map(rc::gen::container<std::vector<std::string>>(std::move(piece)),
                      [](const std::vector<std::string>& pieces) {
                        std::string text;
                        for (const std::string& one : pieces) text += one;
                        return withoutOptionalBlanks(text);
                      });
}

rc::Gen<ModelRdn> anyRdn() {
  // At full size: a range is narrowed with the size of what is generated, which is small in a DN.
  const auto type = rc::gen::resize(rc::kNominalSize, rc::gen::inRange<std::size_t>(0, kTypes.size()));
  const auto pair =
      rc::gen::build<ModelPair>(rc::gen::set(&ModelPair::type, type), rc::gen::set(&ModelPair::value, anyValue()));
  const auto unique = [](const ModelPair& one) { return one.type; };
  const auto size = rc::gen::weightedElement<std::size_t>({{6, 1}, {2, 2}, {1, 4}});
  return rc::gen::mapcat(size, [=](std::size_t n) { return rc::gen::uniqueBy<ModelRdn>(n, pair, unique); });
}

}  // namespace

void showValue(const ModelPair& pair, std::ostream& out) {
  out << kTypes[pair.type].front() << '=';
  rc::show(pair.value, out);
}

rc::Gen<std::string> anyValue() {
  return rc::gen::weightedOneOf<std::string>({
      {6, valueOf(rc::gen::elementOf(kPieces))},
      {1, valueOf(rc::gen::oneOf(rc::gen::elementOf(kPieces), rc::gen::elementOf(kBrokenPieces)))},
  });
}

rc::Gen<ModelDn> anyDn() { return rc::gen::scale(0.15, rc::gen::container<ModelDn>(anyRdn())); }

std::string spelled(const ModelDn& dn, std::uint32_t seed) { return Speller(seed).dn(dn); }

rc::Gen<std::string> textOf(std::string_view alphabet) {
  return rc::gen::container<std::string>(rc::gen::elementOf(std::string(alphabet)));
}

}  // namespace cfgstore::testing
