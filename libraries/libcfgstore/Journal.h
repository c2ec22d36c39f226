// Journal.h -- tells the observer of a store about one write.

#ifndef CFGMIG_LIBCFGSTORE_JOURNAL_H
#define CFGMIG_LIBCFGSTORE_JOURNAL_H

#include <cstddef>
#include <initializer_list>
#include <span>
#include <string_view>

#include "ConfigStore.h"
#include "Document.h"

namespace cfgstore {

// Made before the write, so that no memory is needed after it. Costs nothing when nobody observes the store.
class JournalEntry {
 public:
  JournalEntry(ConfigStore& store, Operation operation, const char* dn, const char* attribute,
               std::span<const std::string_view> values)
      : m_observer(store.observer()),
        m_gate(store.gate()),
        m_document(store.document()),
        m_editsBefore(m_document.edits()),
        m_write{operation, view(dn), view(attribute), {}, 0} {
    if (m_observer || m_gate) m_write.values.assign(values.begin(), values.end());
  }

  // Null values are left out.
  JournalEntry(ConfigStore& store, Operation operation, const char* dn, const char* attribute,
               std::initializer_list<const char*> values)
      : JournalEntry(store, operation, dn, attribute, std::span<const std::string_view>()) {
    if (!m_observer && !m_gate) return;
    m_write.values.reserve(values.size());
    for (const char* value : values) {
      if (value != nullptr) m_write.values.emplace_back(value);
    }
  }

  // What the gate of the store answers in its place; 0 when the write may happen.
  int refusal() const { return m_gate ? m_gate(m_write) : 0; }

  // Reports the write with its result, and returns the result.
  int finish(int rc) {
    if (m_observer) {
      m_write.rc = rc;
      m_write.changed = m_document.edits() != m_editsBefore;
      m_observer(m_write);
    }
    return rc;
  }

 private:
  static std::string_view view(const char* text) { return text != nullptr ? text : ""; }

  const Observer& m_observer;
  const WriteGate& m_gate;
  const Document& m_document;
  std::size_t m_editsBefore;
  Write m_write;
};

}  // namespace cfgstore

#endif  // CFGMIG_LIBCFGSTORE_JOURNAL_H
