// StoreModel.h -- the store contract in its simplest form: maps instead of lines, names instead of spellings. What the
// store answers and what it holds is compared with this.

#ifndef CFGMIG_TESTS_LIBCFGSTORE_STOREMODEL_H
#define CFGMIG_TESTS_LIBCFGSTORE_STOREMODEL_H

#include <map>
#include <string>
#include <vector>

namespace cfgstore::test {

// By normal DN, then by name in lower case: the values, each once.
using Content = std::map<std::string, std::map<std::string, std::vector<std::string>>>;

// DNs are in normal form, names in lower case. Each operation answers the code that the store has to answer, for DNs
// that are DNs, names that are names and values that are not null.
class StoreModel {
 public:
  explicit StoreModel(Content content) : m_content(std::move(content)) {}

  int addValue(const std::string& dn, const std::string& name, const std::string& value);
  int delValue(const std::string& dn, const std::string& name, const std::vector<std::string>& listed);
  int setValue(const std::string& dn, const std::string& name, const std::string& value);
  int addEntry(const std::string& dn, const std::string& cn, const std::string& objectClass,
               const std::string& secondObjectClass);
  int removeEntry(const std::string& dn);

  const Content& content() const { return m_content; }

 private:
  Content m_content;
};

}  // namespace cfgstore::test

#endif  // CFGMIG_TESTS_LIBCFGSTORE_STOREMODEL_H
