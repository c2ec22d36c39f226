#include "PlainLdif.h"

#include <algorithm>
#include <cctype>
#include <map>

namespace cfgstore::test {
namespace {

using Kind = PlainLine::Kind;

const std::string kMark = "\xEF\xBB\xBF";

std::string chopped(std::string line) {
  if (line.ends_with('\n')) line.pop_back();
  if (line.ends_with('\r')) line.pop_back();
  return line;
}

std::vector<std::string> physicalLines(std::string_view text) {
  std::vector<std::string> lines;
  while (!text.empty()) {
    const auto end = std::min(text.find('\n'), text.size() - 1) + 1;
    lines.emplace_back(text.substr(0, end));
    text.remove_prefix(end);
  }
  return lines;
}

std::string decoded(const std::string& base64) {
  static const std::string digits = "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/";
  std::string bits;
  for (const char c : base64) {
    const auto digit = digits.find(c);
    if (digit == std::string::npos) continue;
    for (int bit = 5; bit >= 0; --bit) bits += ((digit >> bit) & 1) != 0 ? '1' : '0';
  }
  std::string bytes;
  for (std::size_t at = 0; at + 8 <= bits.size(); at += 8) {
    bytes += static_cast<char>(std::stoi(bits.substr(at, 8), nullptr, 2));
  }
  return bytes;
}

PlainLine logicalLine(const std::vector<std::string>& physical) {
  PlainLine line;
  std::string unfolded;
  for (const std::string& part : physical) {
    line.text += part;
    unfolded += line.text.size() == part.size() ? chopped(part) : chopped(part).substr(1);
  }
  if (physical.size() > 1) line.column = chopped(physical.front()).size();
  if (unfolded.starts_with(kMark)) unfolded.erase(0, kMark.size());
  if (unfolded.empty()) return line;
  line.kind = unfolded[0] == '#' ? Kind::comment : Kind::attribute;
  if (line.kind == Kind::comment) return line;
  auto at = unfolded.find(':');
  line.name = unfolded.substr(0, at++);
  line.base64 = unfolded[at] == ':';
  if (line.base64) ++at;
  line.value = unfolded.substr(std::min(unfolded.find_first_not_of(' ', at), unfolded.size()));
  if (line.base64) line.value = decoded(line.value);
  if (squeezed(line.name) == "dn") line.kind = Kind::dn;
  return line;
}

}  // namespace

std::string squeezed(std::string_view text) {
  std::string result;
  for (const char c : text) {
    if (c != ' ') result += static_cast<char>(std::tolower(static_cast<unsigned char>(c)));
  }
  return result;
}

PlainLdif::PlainLdif(std::string_view text) {
  std::vector<std::string> logical;
  const auto finish = [&] {
    if (!logical.empty()) m_lines.push_back(logicalLine(logical));
    logical.clear();
  };
  for (std::string& line : physicalLines(text)) {
    const bool goesOn = line.starts_with(' ') && !logical.empty() && !chopped(logical.front()).empty();
    if (!goesOn) finish();
    logical.push_back(std::move(line));
  }
  finish();

  int entry = -1;
  for (std::size_t i = 0; i < m_lines.size(); ++i) {
    PlainLine& line = m_lines[i];
    if (line.kind == Kind::blank) entry = -1;
    if (line.kind == Kind::dn) {
      entry = m_entries++;
      for (std::size_t above = i; above > 0 && m_lines[above - 1].kind == Kind::comment; --above) {
        m_lines[above - 1].entry = entry;
      }
    }
    line.entry = entry;
    if (line.kind == Kind::attribute && m_entries == 0) line.kind = Kind::version;
  }
}

std::string PlainLdif::lineEnd() const {
  int returns = 0;
  for (const PlainLine& line : m_lines) {
    if (line.text.ends_with('\n')) returns += line.text.ends_with("\r\n") ? 1 : -1;
  }
  // Empty lines that follow each other count once.
  for (std::size_t i = 1; i < m_lines.size(); ++i) {
    if (m_lines[i].kind != Kind::blank || m_lines[i - 1].kind != Kind::blank) continue;
    returns -= m_lines[i - 1].text.ends_with("\r\n") ? 1 : -1;
  }
  return returns > 0 ? "\r\n" : "\n";
}

std::size_t PlainLdif::foldColumn() const {
  std::map<std::size_t, int> columns;
  int folded = 0;
  int wide = 0;
  for (const PlainLine& line : m_lines) {
    if (line.kind != Kind::attribute && line.kind != Kind::dn) continue;
    if (line.column != 0) ++folded;
    if (line.column >= 20 && line.column <= 255) ++columns[line.column];
  }
  std::size_t column = 76;
  int most = 0;
  for (const auto& [width, count] : columns) {
    if (count > most) {
      most = count;
      column = width;
    }
  }
  for (const PlainLine& line : m_lines) {
    const bool named = line.kind == Kind::attribute || line.kind == Kind::dn;
    if (named && line.column == 0 && chopped(line.text).size() > std::max<std::size_t>(column, 80)) ++wide;
  }
  return wide > folded ? 0 : column;
}

bool PlainLdif::hasBlankAfterColon() const {
  int blanks = 0;
  for (const PlainLine& line : m_lines) {
    if ((line.kind != Kind::attribute && line.kind != Kind::dn) || line.base64 || line.column != 0) continue;
    const std::string rest = chopped(line.text).substr(line.text.find(':') + 1);
    if (!rest.empty()) blanks += rest[0] == ' ' ? 1 : -1;
  }
  return blanks >= 0;
}

bool PlainLdif::hasRawText() const {
  return std::any_of(m_lines.begin(), m_lines.end(), [](const PlainLine& line) {
    const bool named = line.kind == Kind::attribute || line.kind == Kind::dn;
    return named && !line.base64 && line.column == 0 &&
           std::any_of(line.value.begin(), line.value.end(), [](char c) { return (c & 0x80) != 0; });
  });
}

std::string PlainLdif::separator() const {
  std::map<std::size_t, int> runs;
  std::size_t run = 0;
  for (std::size_t i = 0; i <= m_lines.size(); ++i) {
    if (i < m_lines.size() && m_lines[i].kind == Kind::blank) {
      ++run;
    } else if (run > 0) {
      ++runs[std::min<std::size_t>(run, 3)];
      run = 0;
    }
  }
  std::size_t usual = 1;
  int most = 0;
  for (const auto& [length, count] : runs) {
    if (count > most) {
      most = count;
      usual = length;
    }
  }
  std::string text;
  for (std::size_t i = 0; i < usual; ++i) text += lineEnd();
  return text;
}

}  // namespace cfgstore::test
