// OwnStore.cpp -- everything that CfgUtils.h declares. Small rather than fast: every lookup walks all entries.

#include "OwnStore.h"

#include <strings.h>

#include <algorithm>
#include <cctype>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <map>
#include <stdexcept>
#include <vector>

namespace {

constexpr int kNoAttribute = 16;  // the one code that libcfgmig knows
constexpr int kNoEntry = 32;
constexpr int kEntryExists = 68;
constexpr int kBadArgument = 89;

struct Attribute {
  std::string name;
  std::vector<std::string> values;  // at least one
};

struct Entry {
  std::string dn;      // as it was written
  std::string normal;  // as formatDn writes it
  std::vector<Attribute> attributes;

  std::vector<Attribute>::iterator find(const char* name) {
    return std::find_if(attributes.begin(), attributes.end(),
                        [&](const Attribute& one) { return strcasecmp(one.name.c_str(), name) == 0; });
  }
  // Values are kept once each.
  void add(const char* name, const std::string& value) {
    const auto found = find(name);
    if (found == attributes.end()) {
      attributes.push_back({name, {value}});
    } else if (std::find(found->values.begin(), found->values.end(), value) == found->values.end()) {
      found->values.push_back(value);
    }
  }
};

// Upper-case and without blanks around ',' and '='; empty for what is no DN. This product's names hold no escapes.
std::string normalForm(const std::string& dn) {
  std::string normal;
  for (const char c : dn) {
    const bool afterSeparator = normal.empty() || normal.back() == ',' || normal.back() == '=';
    if (c == ' ' && afterSeparator) continue;
    while (!normal.empty() && (c == ',' || c == '=') && normal.back() == ' ') normal.pop_back();
    normal += static_cast<char>(std::toupper(static_cast<unsigned char>(c)));
  }
  while (!normal.empty() && normal.back() == ' ') normal.pop_back();
  return normal.find('=') == std::string::npos ? std::string() : normal;
}

bool isBelow(const std::string& normal, const std::string& base) {
  return normal.size() > base.size() && normal[normal.size() - base.size() - 1] == ',' &&
         normal.compare(normal.size() - base.size(), base.size(), base) == 0;
}

char* copyOf(const std::string& text) {
  char* const copy = strdup(text.c_str());
  return copy != nullptr ? copy : throw std::bad_alloc();
}

void handOver(const std::vector<std::string>& texts, char*** list, int* count) {
  *list = static_cast<char**>(std::calloc(texts.size() + 1, sizeof(char*)));
  if (*list == nullptr) throw std::bad_alloc();
  for (std::size_t i = 0; i < texts.size(); ++i) (*list)[i] = copyOf(texts[i]);
  *count = static_cast<int>(texts.size());
}

std::string withoutBlanks(const std::string& text) {
  const std::size_t first = text.find_first_not_of(' ');
  return first == std::string::npos ? std::string() : text.substr(first, text.find_last_not_of(' ') - first + 1);
}

// The way from a store to its content, for writeStore: the pointer in CfgUtils is private.
std::map<const OVOConfigUtils::CfgUtils*, const std::vector<Entry>*>& openStores() {
  static std::map<const OVOConfigUtils::CfgUtils*, const std::vector<Entry>*> stores;
  return stores;
}

}  // namespace

// An entry that was looked up: the names of its attributes, and how far the walk over them has come.
struct _CFGMessage {
  std::vector<std::string> names;
  std::size_t next = 0;
};

namespace OVOConfigUtils {

struct CfgUtils::Implementation {
  std::vector<Entry> entries;

  Entry* find(const char* dn) {
    const std::string normal = dn == nullptr ? std::string() : normalForm(dn);
    const auto found =
        std::find_if(entries.begin(), entries.end(), [&](const Entry& entry) { return entry.normal == normal; });
    return found == entries.end() ? nullptr : &*found;
  }
};

CfgUtils::CfgUtils(const char* path, aes_key_data*) : m_implementation(nullptr) {
  std::ifstream file(path);
  if (!file) throw std::runtime_error(std::string(path) + ": cannot be read");
  std::vector<Entry> entries;
  for (std::string line; std::getline(file, line);) {
    const std::size_t equals = line.find('=');
    if (line.empty() || line[0] == '#') continue;
    if (line[0] == '[' && line.back() == ']') {
      const std::string dn = line.substr(1, line.size() - 2);
      entries.push_back({dn, normalForm(dn), {}});
    } else if (!entries.empty() && equals != std::string::npos) {
      entries.back().add(withoutBlanks(line.substr(0, equals)).c_str(), withoutBlanks(line.substr(equals + 1)));
    } else {
      throw std::runtime_error(std::string(path) + ": neither an entry nor a setting: " + line);
    }
  }
  m_implementation = new Implementation{std::move(entries)};
  openStores()[this] = &m_implementation->entries;
}

CfgUtils::~CfgUtils() {
  openStores().erase(this);
  delete m_implementation;
}

int CfgUtils::getSubordinates(const char* baseDn, int scope, char*** dns, int* count) {
  *dns = nullptr;
  *count = 0;
  if (baseDn == nullptr || scope != 2) return kBadArgument;  // libcfgmig asks for whole trees only
  if (m_implementation->find(baseDn) == nullptr) return kNoEntry;
  const std::string base = normalForm(baseDn);
  std::vector<std::string> found;
  for (const Entry& entry : m_implementation->entries) {
    if (entry.normal == base || isBelow(entry.normal, base)) found.push_back(entry.dn);
  }
  handOver(found, dns, count);
  return 0;
}

int CfgUtils::getParamValueInfo(const char* dn, const char* attribute, char** value) {
  *value = nullptr;
  Entry* const entry = m_implementation->find(dn);
  if (entry == nullptr) return kNoEntry;
  if (const auto found = entry->find(attribute); found != entry->attributes.end()) *value = copyOf(found->values[0]);
  return 0;
}

int CfgUtils::getParamArrayValueInfo(const char* dn, const char* attribute, char*** values, int* count) {
  *values = nullptr;
  *count = 0;
  Entry* const entry = m_implementation->find(dn);
  if (entry == nullptr) return kNoEntry;
  const auto found = entry->find(attribute);
  if (found == entry->attributes.end()) return kNoAttribute;
  handOver(found->values, values, count);
  return 0;
}

int CfgUtils::addValue(const char* dn, const char* attribute, const char* value) {
  if (value == nullptr) return kBadArgument;
  Entry* const entry = m_implementation->find(dn);
  if (entry == nullptr) return kNoEntry;
  entry->add(attribute, value);
  return 0;
}

int CfgUtils::delValue(const char* dn, const char* attribute, char** values) {
  Entry* const entry = m_implementation->find(dn);
  if (entry == nullptr) return kNoEntry;
  int rc = 0;
  for (; *values != nullptr; ++values) {
    const auto found = entry->find(attribute);
    if (found == entry->attributes.end()) return kNoAttribute;
    const auto value = std::find(found->values.begin(), found->values.end(), *values);
    if (value == found->values.end()) {
      rc = kNoAttribute;
      continue;
    }
    found->values.erase(value);
    if (found->values.empty()) entry->attributes.erase(found);  // an attribute goes with its last value
  }
  return rc;
}

int CfgUtils::setValue(const char* dn, const char* attribute, const char* value) {
  if (value == nullptr) return kBadArgument;
  Entry* const entry = m_implementation->find(dn);
  if (entry == nullptr) return kNoEntry;
  const auto found = entry->find(attribute);
  if (found == entry->attributes.end()) {
    entry->attributes.push_back({attribute, {value}});
  } else {
    found->values = {value};
  }
  return 0;
}

int CfgUtils::addEntry(const char* dn, const char* cn, const char* objectClass, const char* secondObjectClass) {
  if (dn == nullptr || cn == nullptr || objectClass == nullptr || secondObjectClass == nullptr) return kBadArgument;
  if (m_implementation->find(dn) != nullptr) return kEntryExists;
  Entry entry{dn, normalForm(dn), {}};
  if (entry.normal.empty()) return kBadArgument;
  entry.add("objectClass", objectClass);
  entry.add("objectClass", secondObjectClass);
  entry.add("cn", cn);
  m_implementation->entries.push_back(std::move(entry));
  return 0;
}

int CfgUtils::removeEntry(const char* dn) {
  const Entry* const entry = m_implementation->find(dn);
  if (entry == nullptr) return kNoEntry;
  m_implementation->entries.erase(m_implementation->entries.begin() + (entry - m_implementation->entries.data()));
  return 0;
}

int CfgUtils::getFirstEntry(const char* dn, _CFGMessage** entry) {
  *entry = nullptr;
  const Entry* const found = m_implementation->find(dn);
  if (found == nullptr) return kNoEntry;
  *entry = new _CFGMessage;
  for (const Attribute& attribute : found->attributes) (*entry)->names.push_back(attribute.name);
  return 0;
}

int CfgUtils::getFirstAttribute(_CFGMessage* entry, char** attribute, _CFGMessage*** cursor) {
  *attribute = nullptr;
  *cursor = nullptr;
  if (entry == nullptr) return kBadArgument;
  entry->next = 0;
  *cursor = new _CFGMessage*(entry);
  return getNextAttribute(entry, attribute, *cursor);
}

int CfgUtils::getNextAttribute(_CFGMessage* entry, char** attribute, _CFGMessage**) {
  *attribute = entry->next < entry->names.size() ? copyOf(entry->names[entry->next++]) : nullptr;
  return 0;
}

}  // namespace OVOConfigUtils

char* formatDn(const char* dn) {
  const std::string normal = dn == nullptr ? std::string() : normalForm(dn);
  return normal.empty() ? nullptr : strdup(normal.c_str());
}

int compareDns(const char* left, const char* right) {
  if (left == nullptr || right == nullptr) return 0;
  const std::string normal = normalForm(left);
  return !normal.empty() && normal == normalForm(right);
}

int doesFileExist(const char* path) { return path != nullptr && std::filesystem::exists(path); }

int copyFile(const char* source, const char* destination, char*, int, int permissions) {
  std::error_code error;
  std::filesystem::copy_file(source, destination, std::filesystem::copy_options::overwrite_existing, error);
  if (!error) std::filesystem::permissions(destination, std::filesystem::perms(permissions), error);
  return !error;
}

void cfg_msgfree(_CFGMessage* entry) { delete entry; }

void cfg_ber_free(_CFGMessage** cursor) { delete cursor; }

void writeStore(const OVOConfigUtils::CfgUtils& store, const std::string& path) {
  std::ofstream file(path, std::ios::trunc);
  for (const Entry& entry : *openStores().at(&store)) {
    file << '[' << entry.dn << "]\n";
    for (const Attribute& attribute : entry.attributes) {
      for (const std::string& value : attribute.values) file << attribute.name << " = " << value << '\n';
    }
    file << '\n';
  }
  if (!file.flush()) throw std::runtime_error(path + ": cannot be written");
}
