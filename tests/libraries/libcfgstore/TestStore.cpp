#include "TestStore.h"

#include <gtest/gtest.h>
#include <unistd.h>

#include <algorithm>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <sstream>

namespace cfgstore::test {
namespace {

// Takes over a value list, checking that it is counted and closed as promised.
ListResult takeList(int rc, char** list, int count) {
  ListResult result{rc, {}};
  if (rc != 0) {
    EXPECT_EQ(list, nullptr) << "a list after a failure";
    EXPECT_EQ(count, 0) << "a count after a failure";
    return result;
  }
  EXPECT_NE(list, nullptr) << "no list after a success";
  if (list == nullptr) return result;
  for (int i = 0; i < count; ++i) {
    EXPECT_NE(list[i], nullptr) << "a null slot before the count";
    result.values.emplace_back(list[i]);
    std::free(list[i]);
  }
  EXPECT_EQ(list[count], nullptr) << "a list that is not closed by a null slot";
  std::free(list);
  return result;
}

Strings linesOf(std::string_view text) {
  Strings lines;
  while (!text.empty()) {
    const auto newline = text.find('\n');
    const auto size = newline == std::string_view::npos ? text.size() : newline + 1;
    std::string line;
    for (const char c : text.substr(0, size)) line += c == '\n' ? "\\n" : c == '\r' ? "\\r" : std::string(1, c);
    lines.push_back(line);
    text.remove_prefix(size);
  }
  return lines;
}

}  // namespace

TemporaryDirectory::TemporaryDirectory() {
  std::string path = std::filesystem::temp_directory_path() / "cfgstore-test-XXXXXX";
  if (::mkdtemp(path.data()) == nullptr) throw std::runtime_error("no temporary directory");
  m_path = path;
}

TemporaryDirectory::~TemporaryDirectory() {
  std::error_code ignored;
  std::filesystem::remove_all(m_path, ignored);
}

std::string TemporaryDirectory::write(std::string_view name, std::string_view content) const {
  writeFile(file(name), content);
  return file(name);
}

Strings TemporaryDirectory::names() const {
  Strings names;
  for (const auto& entry : std::filesystem::directory_iterator(m_path)) names.push_back(entry.path().filename());
  std::sort(names.begin(), names.end());
  return names;
}

AsOrdinaryUser::AsOrdinaryUser(const TemporaryDirectory& directory, const std::string& file) {
  constexpr uid_t kNobody = 65534;
  if (::geteuid() != 0) return;
  const bool given =
      ::chown(directory.path().c_str(), kNobody, kNobody) == 0 && ::chown(file.c_str(), kNobody, kNobody) == 0;
  if (!given || ::seteuid(kNobody) != 0) throw std::runtime_error("the superuser's rights cannot be given up");
  m_changed = true;
}

AsOrdinaryUser::~AsOrdinaryUser() {
  if (m_changed && ::seteuid(0) != 0) ADD_FAILURE() << "the superuser's rights are not given back";
}

std::string readFile(const std::string& path) {
  std::ifstream stream(path, std::ios::binary);
  EXPECT_TRUE(stream) << path;
  std::ostringstream content;
  content << stream.rdbuf();
  return content.str();
}

void writeFile(const std::string& path, std::string_view content) {
  std::ofstream stream(path, std::ios::binary | std::ios::trunc);
  stream.write(content.data(), static_cast<std::streamsize>(content.size()));
  stream.close();
  if (!stream) throw std::runtime_error("cannot write " + path);
}

TestStore::TestStore(std::string_view text)
    : m_path(m_directory.write("config.ldif", text)),
      m_utils(std::make_unique<OVOConfigUtils::CfgUtils>(m_path.c_str(), nullptr)) {}

ListResult TestStore::subordinates(const char* base, int scope) {
  char** list = nullptr;
  int count = -1;
  const int rc = m_utils->getSubordinates(base, scope, &list, &count);
  return takeList(rc, list, count);
}

ListResult TestStore::values(const char* dn, const char* attribute) {
  char** list = nullptr;
  int count = -1;
  const int rc = m_utils->getParamArrayValueInfo(dn, attribute, &list, &count);
  return takeList(rc, list, count);
}

ValueResult TestStore::value(const char* dn, const char* attribute) {
  char* value = nullptr;
  ValueResult result;
  result.rc = m_utils->getParamValueInfo(dn, attribute, &value);
  if (value != nullptr) result.value = value;
  std::free(value);
  return result;
}

Strings TestStore::attributes(const char* dn) {
  Strings names;
  _CFGMessage* entry = nullptr;
  EXPECT_EQ(m_utils->getFirstEntry(dn, &entry), 0);
  char* name = nullptr;
  _CFGMessage** cursor = nullptr;
  EXPECT_EQ(m_utils->getFirstAttribute(entry, &name, &cursor), 0);
  while (name != nullptr) {
    names.emplace_back(name);
    std::free(name);
    EXPECT_EQ(m_utils->getNextAttribute(entry, &name, cursor), 0);
  }
  cfg_ber_free(cursor);
  cfg_msgfree(entry);
  return names;
}

int TestStore::addValue(const char* dn, const char* attribute, const char* value) {
  return m_utils->addValue(dn, attribute, value);
}

int TestStore::delValue(const char* dn, const char* attribute, const Strings& values) {
  Strings copies = values;
  std::vector<char*> list;
  for (std::string& copy : copies) list.push_back(copy.data());
  list.push_back(nullptr);
  return m_utils->delValue(dn, attribute, list.data());
}

int TestStore::setValue(const char* dn, const char* attribute, const char* value) {
  return m_utils->setValue(dn, attribute, value);
}

int TestStore::addEntry(const char* dn, const char* cn, const char* objectClass, const char* secondObjectClass) {
  return m_utils->addEntry(dn, cn, objectClass, secondObjectClass);
}

int TestStore::removeEntry(const char* dn) { return m_utils->removeEntry(dn); }

Strings problemsOf(std::string_view text) {
  try {
    TestStore store(text);
    return {};
  } catch (const OpenError& error) {
    Strings problems;
    for (const Problem& problem : error.problems()) {
      problems.push_back(std::to_string(problem.line) + ": " + problem.text);
    }
    return problems;
  }
}

Strings diff(std::string_view before, std::string_view after) {
  const Strings left = linesOf(before);
  const Strings right = linesOf(after);
  // The longest common subsequence, by the table: the texts of the tests are small.
  std::vector<std::vector<std::size_t>> common(left.size() + 1, std::vector<std::size_t>(right.size() + 1));
  for (std::size_t i = left.size(); i-- > 0;) {
    for (std::size_t j = right.size(); j-- > 0;) {
      common[i][j] = left[i] == right[j] ? common[i + 1][j + 1] + 1 : std::max(common[i + 1][j], common[i][j + 1]);
    }
  }
  Strings changes;
  std::size_t i = 0;
  std::size_t j = 0;
  while (i < left.size() || j < right.size()) {
    if (i < left.size() && j < right.size() && left[i] == right[j]) {
      ++i;
      ++j;
    } else if (j == right.size() || (i < left.size() && common[i + 1][j] >= common[i][j + 1])) {
      changes.push_back("-" + left[i++]);
    } else {
      changes.push_back("+" + right[j++]);
    }
  }
  return changes;
}

}  // namespace cfgstore::test
