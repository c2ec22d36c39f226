#include "ExampleFiles.h"

#include <stdlib.h>

#include <algorithm>
#include <cerrno>
#include <fstream>
#include <iterator>
#include <ostream>
#include <system_error>

namespace examples {

namespace fs = std::filesystem;

fs::path folder(const std::string& example) { return fs::path(CFGMIG_EXAMPLES) / example; }

void PrintTo(const Merge& merge, std::ostream* out) { *out << merge.version << ' ' << merge.oldFile; }

std::string nameOf(const Merge& merge) {
  return "From" + lettersAndDigits(merge.version) + lettersAndDigits(fs::path(merge.oldFile).stem().string());
}

std::string lettersAndDigits(std::string_view text) {
  std::string kept;
  bool capital = true;
  for (const char c : text) {
    const bool letter = (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z');
    if (letter || (c >= '0' && c <= '9'))
      kept += capital && c >= 'a' && c <= 'z' ? static_cast<char>(c - 'a' + 'A') : c;
    capital = !letter;
  }
  return kept;
}

std::string contentOf(const fs::path& file) {
  std::ifstream in(file, std::ios::binary);
  if (!in) throw std::system_error(errno, std::generic_category(), file.string());
  return {std::istreambuf_iterator<char>(in), {}};
}

std::vector<std::string> linesOf(const std::string& text) {
  std::vector<std::string> lines;
  for (std::size_t at = 0; at < text.size();) {
    const std::size_t end = std::min(text.find('\n', at), text.size());
    lines.push_back(text.substr(at, end - at));
    at = end + 1;
  }
  return lines;
}

Shape shapeOf(const std::string& text) {
  Shape shape;
  bool inEntry = false;
  std::string entry;
  const std::vector<std::string> lines = linesOf(text);
  for (std::size_t i = 0; i < lines.size(); ++i) {
    const std::string& line = lines[i];
    if (line.empty()) inEntry = false;
    if (line.empty() || line[0] == ' ') continue;
    const bool folded = i + 1 < lines.size() && lines[i + 1].starts_with(' ');
    if (line[0] == '#') {
      ++shape.comments;
      shape.foldedComments += folded ? 1 : 0;
      shape.commentsInsideEntries += inEntry ? 1 : 0;
      continue;
    }
    const std::string name = lowerCase(line.substr(0, line.find(':')));
    if (name == "version") continue;
    const bool base64 = line.compare(name.size(), 2, "::") == 0;
    shape.base64Values += base64 ? 1 : 0;
    shape.foldedValues += folded ? 1 : 0;
    if (name != "dn") {
      ++shape.values;
      shape.names.insert(name);
      shape.namesByEntry[entry].insert(name);
      continue;
    }
    inEntry = true;
    ++shape.entries;
    entry = line.substr(4);
    for (std::size_t next = i + 1; next < lines.size() && lines[next].starts_with(' '); ++next) {
      entry += lines[next].substr(1);
    }
    if (!base64) shape.dns.push_back(entry);
    entry = plainDn(entry);
  }
  return shape;
}

std::string lowerCase(std::string_view text) {
  std::string lower(text);
  std::transform(lower.begin(), lower.end(), lower.begin(),
                 [](char c) { return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c; });
  return lower;
}

std::string plainDn(std::string_view dn) {
  std::string plain;
  for (char c : lowerCase(dn)) {
    if (c != ' ' || !plain.ends_with(',')) plain += c;
  }
  return plain;
}

TemporaryFolder::TemporaryFolder() {
  std::string name = (fs::temp_directory_path() / "cfgmig-example-XXXXXX").string();
  if (::mkdtemp(name.data()) == nullptr) throw std::system_error(errno, std::generic_category(), name);
  m_path = name;
}

TemporaryFolder::~TemporaryFolder() {
  std::error_code ignored;
  fs::remove_all(m_path, ignored);
}

fs::path TemporaryFolder::add(const fs::path& file) const {
  fs::path copy = m_path / file.filename();
  fs::copy_file(file, copy);
  fs::permissions(copy, fs::perms::owner_read | fs::perms::owner_write);
  return copy;
}

std::vector<std::string> TemporaryFolder::names() const {
  std::vector<std::string> names;
  for (const auto& entry : fs::directory_iterator(m_path)) names.push_back(entry.path().filename().string());
  std::sort(names.begin(), names.end());
  return names;
}

}  // namespace examples
