#include "DnType.h"

namespace cfgstore {
namespace {

struct WellKnownType {
  std::string_view oid;
  std::string_view name;
};

// The types that RFC 4514 section 3 requires to be known by name, and the other ones that name people in DNs.
constexpr WellKnownType kWellKnownTypes[] = {
    {"2.5.4.3", "CN"},
    {"2.5.4.4", "SN"},
    {"2.5.4.5", "SERIALNUMBER"},
    {"2.5.4.6", "C"},
    {"2.5.4.7", "L"},
    {"2.5.4.8", "ST"},
    {"2.5.4.9", "STREET"},
    {"2.5.4.10", "O"},
    {"2.5.4.11", "OU"},
    {"2.5.4.12", "TITLE"},
    {"2.5.4.42", "GIVENNAME"},
    {"0.9.2342.19200300.100.1.1", "UID"},
    {"0.9.2342.19200300.100.1.25", "DC"},
};

bool isDigit(char c) { return c >= '0' && c <= '9'; }
char asciiUpper(char c) { return c >= 'a' && c <= 'z' ? static_cast<char>(c - 'a' + 'A') : c; }

// One number of an OID: digits, the first of several not 0.
bool isOidNumber(std::string_view text) {
  if (text.empty() || (text.size() > 1 && text.front() == '0')) return false;
  return text.find_first_not_of("0123456789") == std::string_view::npos;
}

bool isOid(std::string_view text) {
  std::size_t dots = 0;
  for (;;) {
    const std::size_t dot = text.find('.');
    if (!isOidNumber(text.substr(0, dot))) return false;
    if (dot == std::string_view::npos) return dots > 0;
    text.remove_prefix(dot + 1);
    ++dots;
  }
}

}  // namespace

std::size_t oidPrefixLength(std::string_view text) {
  constexpr std::string_view kPrefix = "OID.";
  if (text.size() <= kPrefix.size() || !isDigit(text[kPrefix.size()])) return 0;
  for (std::size_t at = 0; at < kPrefix.size(); ++at) {
    if (asciiUpper(text[at]) != kPrefix[at]) return 0;
  }
  return kPrefix.size();
}

bool appendNormalType(std::string_view type, std::string& out) {
  if (type.empty()) return false;
  if (!isDigit(type.front())) {
    for (const char c : type) out += asciiUpper(c);
    return true;
  }
  if (!isOid(type)) return false;
  for (const WellKnownType& known : kWellKnownTypes) {
    if (known.oid == type) type = known.name;
  }
  out += type;
  return true;
}

}  // namespace cfgstore
