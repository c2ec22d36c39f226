// CfgUtils.cpp -- the C boundary of the store: checks arguments, hands out heap copies, tells the journal.

#include "CfgUtils.h"

#include <memory>
#include <span>
#include <string_view>
#include <type_traits>
#include <vector>

#include "ConfigStore.h"
#include "Document.h"
#include "EntryWalk.h"
#include "Journal.h"
#include "ResultCode.h"
#include "StoreResults.h"

using cfgstore::Document;
using cfgstore::EntryId;
using cfgstore::EntryLines;
using cfgstore::JournalEntry;
using cfgstore::kNoEntry;
using cfgstore::ListBuilder;
using cfgstore::Operation;
using cfgstore::ResultCode;

namespace OVOConfigUtils {

struct CfgUtils::Implementation {
  cfgstore::ConfigStore store;
};

CfgUtils::CfgUtils(const char* path, aes_key_data* /*key*/)  // values are not sealed
    : m_implementation(new Implementation{cfgstore::ConfigStore(path != nullptr ? path : "")}) {}

CfgUtils::~CfgUtils() { delete m_implementation; }

int CfgUtils::getSubordinates(const char* baseDn, int scope, char*** dns, int* count) {
  if (dns != nullptr) *dns = nullptr;
  if (count != nullptr) *count = 0;
  if (baseDn == nullptr || dns == nullptr || count == nullptr || scope < 0 || scope > 2) return cfgstore::kParamError;
  ListBuilder list;
  const ResultCode rc =
      m_implementation->store.document().visitSubordinates(baseDn, scope, [&](std::string_view dn) { list.add(dn); });
  if (rc == cfgstore::kSuccess) list.handOver(dns, count);
  return rc;
}

int CfgUtils::getParamValueInfo(const char* dn, const char* attribute, char** value) {
  if (value != nullptr) *value = nullptr;
  if (dn == nullptr || attribute == nullptr || value == nullptr) return cfgstore::kParamError;
  Document& document = m_implementation->store.document();
  EntryId entry = kNoEntry;
  if (const ResultCode rc = document.find(dn, entry); rc != cfgstore::kSuccess) return rc;
  const EntryLines& lines = document.linesOf(entry);
  const EntryLines::Attribute found = lines.find(attribute);
  if (found != EntryLines::kNone) *value = cfgstore::newString(lines.firstValue(found));
  return cfgstore::kSuccess;
}

int CfgUtils::getParamArrayValueInfo(const char* dn, const char* attribute, char*** values, int* count) {
  if (values != nullptr) *values = nullptr;
  if (count != nullptr) *count = 0;
  if (dn == nullptr || attribute == nullptr || values == nullptr || count == nullptr) return cfgstore::kParamError;
  Document& document = m_implementation->store.document();
  EntryId entry = kNoEntry;
  if (const ResultCode rc = document.find(dn, entry); rc != cfgstore::kSuccess) return rc;
  const EntryLines& lines = document.linesOf(entry);
  const EntryLines::Attribute found = lines.find(attribute);
  if (found == EntryLines::kNone) return cfgstore::kNoSuchAttribute;
  ListBuilder list;
  list.expect(lines.lineCount(found));
  lines.visitValues(found, [&](std::string_view value) { list.add(value); });
  list.handOver(values, count);
  return cfgstore::kSuccess;
}

int CfgUtils::addValue(const char* dn, const char* attribute, const char* value) {
  JournalEntry journal(m_implementation->store, Operation::addValue, dn, attribute, {value});
  if (dn == nullptr || attribute == nullptr || value == nullptr) return journal.finish(cfgstore::kParamError);
  if (const int rc = journal.refusal(); rc != 0) return journal.finish(rc);
  return journal.finish(m_implementation->store.document().addValue(dn, attribute, value));
}

int CfgUtils::delValue(const char* dn, const char* attribute, char** values) {
  // Nearly always it is one value.
  std::string_view one;
  std::vector<std::string_view> several;
  std::span<const std::string_view> listed;
  if (values != nullptr && values[0] != nullptr && values[1] == nullptr) {
    one = values[0];
    listed = std::span(&one, 1);
  } else {
    for (char** value = values; value != nullptr && *value != nullptr; ++value) several.emplace_back(*value);
    listed = several;
  }
  JournalEntry journal(m_implementation->store, Operation::delValue, dn, attribute, listed);
  if (dn == nullptr || attribute == nullptr || values == nullptr) return journal.finish(cfgstore::kParamError);
  if (const int rc = journal.refusal(); rc != 0) return journal.finish(rc);
  return journal.finish(m_implementation->store.document().delValues(dn, attribute, listed));
}

int CfgUtils::setValue(const char* dn, const char* attribute, const char* value) {
  JournalEntry journal(m_implementation->store, Operation::setValue, dn, attribute, {value});
  if (dn == nullptr || attribute == nullptr || value == nullptr) return journal.finish(cfgstore::kParamError);
  if (const int rc = journal.refusal(); rc != 0) return journal.finish(rc);
  return journal.finish(m_implementation->store.document().setValue(dn, attribute, value));
}

int CfgUtils::addEntry(const char* dn, const char* cn, const char* objectClass, const char* secondObjectClass) {
  JournalEntry journal(m_implementation->store, Operation::addEntry, dn, "", {cn, objectClass, secondObjectClass});
  if (dn == nullptr || cn == nullptr || objectClass == nullptr || secondObjectClass == nullptr) {
    return journal.finish(cfgstore::kParamError);
  }
  if (const int rc = journal.refusal(); rc != 0) return journal.finish(rc);
  return journal.finish(m_implementation->store.document().addEntry(dn, cn, objectClass, secondObjectClass));
}

int CfgUtils::removeEntry(const char* dn) {
  JournalEntry journal(m_implementation->store, Operation::removeEntry, dn, "", {});
  if (dn == nullptr) return journal.finish(cfgstore::kParamError);
  if (const int rc = journal.refusal(); rc != 0) return journal.finish(rc);
  return journal.finish(m_implementation->store.document().removeEntry(dn));
}

int CfgUtils::getFirstEntry(const char* dn, _CFGMessage** entry) {
  if (entry != nullptr) *entry = nullptr;
  if (dn == nullptr || entry == nullptr) return cfgstore::kParamError;
  Document& document = m_implementation->store.document();
  EntryId found = kNoEntry;
  if (const ResultCode rc = document.find(dn, found); rc != cfgstore::kSuccess) return rc;
  auto handle = std::make_unique<_CFGMessage>();
  document.linesOf(found).visitNames([&](std::string_view name) { handle->addName(name); });
  *entry = handle.release();
  return cfgstore::kSuccess;
}

int CfgUtils::getFirstAttribute(_CFGMessage* entry, char** attribute, _CFGMessage*** cursor) {
  if (attribute != nullptr) *attribute = nullptr;
  if (cursor != nullptr) *cursor = nullptr;
  if (entry == nullptr || attribute == nullptr || cursor == nullptr) return cfgstore::kParamError;
  std::unique_ptr<_CFGMessage*, decltype(&cfg_ber_free)> fresh(cfgstore::newCursor(entry), &cfg_ber_free);
  *attribute = cfgstore::nextName(cfgstore::cursorBehind(fresh.get()));
  *cursor = fresh.release();
  return cfgstore::kSuccess;
}

int CfgUtils::getNextAttribute(_CFGMessage* entry, char** attribute, _CFGMessage** cursor) {
  if (attribute != nullptr) *attribute = nullptr;
  if (entry == nullptr || attribute == nullptr || cursor == nullptr || *cursor != entry) return cfgstore::kParamError;
  *attribute = cfgstore::nextName(cfgstore::cursorBehind(cursor));
  return cfgstore::kSuccess;
}

}  // namespace OVOConfigUtils

namespace cfgstore {

// CfgUtils keeps its one data member to itself, so that a product's own store has no more to match than its size. A
// pointer to a standard-layout object is a pointer to its first member.
ConfigStore& ConfigStore::of(OVOConfigUtils::CfgUtils& utils) {
  using OVOConfigUtils::CfgUtils;
  static_assert(std::is_standard_layout_v<CfgUtils> && sizeof(CfgUtils) == sizeof(CfgUtils::Implementation*));
  return (*reinterpret_cast<CfgUtils::Implementation**>(&utils))->store;
}

}  // namespace cfgstore
