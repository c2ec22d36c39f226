#include "open_store.h"

#include <cstdlib>
#include <map>
#include <memory>
#include <stdexcept>

#include "pair_files.h"

OpenStore::OpenStore(const std::string& path) : store(path.c_str(), nullptr) {
  char** dns = nullptr;
  int count = 0;
  if (store.getSubordinates("cn=Configuration", 2, &dns, &count) != 0) throw std::runtime_error(path);
  for (int i = 0; i < count; ++i) {
    const std::string dn = dns[i];
    if (dn.starts_with("cn=Setting ")) m_dns.push_back(dn);
    std::free(dns[i]);
  }
  std::free(dns);
}

const char* OpenStore::another() {
  m_at = (m_at + 7919) % m_dns.size();  // a prime that divides no number of entries that is in use
  return m_dns[m_at].c_str();
}

OpenStore& openStoreOf(std::int64_t entries) {
  static std::map<std::int64_t, std::unique_ptr<OpenStore>> known;
  auto& store = known[entries];
  if (!store) store = std::make_unique<OpenStore>(pairFilesOf(entries).old);
  return *store;
}
