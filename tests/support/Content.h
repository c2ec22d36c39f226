// Content.h -- what a configuration store holds, in memory, with the store contract's behaviour and nothing else: no
// file, no heap strings, no faults. FakeCfgUtils.cpp puts the platform interface in front of it.

#ifndef CFGMIG_TESTS_SUPPORT_CONTENT_H
#define CFGMIG_TESTS_SUPPORT_CONTENT_H

#include <list>
#include <string>
#include <string_view>
#include <unordered_map>
#include <utility>
#include <vector>

namespace fake {

struct Attribute {
  std::string name;
  std::vector<std::string> values;
  bool operator==(const Attribute&) const = default;
};

struct Entry {
  std::string dn;  // as it was written when the entry was made
  std::vector<Attribute> attributes;
  bool operator==(const Entry&) const = default;
};

// The codes that this store answers with, besides 0.
inline constexpr int kNoSuchAttribute = 16;
inline constexpr int kBadValue = 19;
inline constexpr int kNoSuchEntry = 32;
inline constexpr int kBadDn = 34;
inline constexpr int kEntryExists = 68;
inline constexpr int kBadHandle = 89;

class Content {
 public:
  Content() = default;
  Content(const Content&) = delete;
  Content& operator=(const Content&) = delete;

  // For the test that sets the store up. An attribute may be given no values, which no operation can bring about.
  void put(std::string dn, std::vector<Attribute> attributes);
  void clear();

  // For the test that looks at the result: entries in order; null where there is none.
  const std::list<Entry>& entries() const { return m_entries; }
  const Entry* find(std::string_view dn) const;
  const Attribute* find(std::string_view dn, std::string_view attribute) const;
  // The values, empty where there is no such entry or attribute.
  std::vector<std::string> values(std::string_view dn, std::string_view attribute) const;

  // The store operations. Each answers its code; results only after 0.
  int subordinates(const char* base, int scope, std::vector<std::string>& dns) const;
  int firstValue(const char* dn, const char* attribute, const std::string*& value) const;
  int allValues(const char* dn, const char* attribute, const std::vector<std::string>*& values) const;
  int addValue(const char* dn, const char* attribute, const char* value);
  int delValue(const char* dn, const char* attribute, char** values);
  int setValue(const char* dn, const char* attribute, const char* value);
  int addEntry(const char* dn, const char* cn, const char* objectClass, const char* secondObjectClass);
  int removeEntry(const char* dn);
  int attributeNames(const char* dn, std::vector<std::string>& names) const;

  // Whether a listing of everything below a base lists the base too.
  void listBase(bool list) { m_listsBase = list; }

 private:
  Entry* entry(const char* dn);
  const Entry* entry(const char* dn) const;

  std::list<Entry> m_entries;
  std::unordered_map<std::string, std::list<Entry>::iterator> m_byDn;  // key: simpleDn of the entry's DN
  bool m_listsBase = true;
};

}  // namespace fake

#endif  // CFGMIG_TESTS_SUPPORT_CONTENT_H
