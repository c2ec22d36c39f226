#include "StoreResults.h"

namespace cfgmig {

PointerArray allocatePointers(int count) {
  // A negative count makes a size that no allocator has.
  return PointerArray(static_cast<char**>(std::malloc(static_cast<std::size_t>(count) * sizeof(char*))));
}

ValueList::~ValueList() {
  if (std::uncaught_exceptions() > m_exceptions) endSilently();
  if (!m_silent) release();
}

void ValueList::endSilently() {
  if (m_values != nullptr) release();
  m_silent = true;
}

void WholeList::release() {
  if (m_values == nullptr) return;
  for (char** value = m_values; *value != nullptr; ++value) {
    std::free(*value);
    *value = nullptr;
  }
  std::free(m_values);
  m_values = nullptr;
  m_count = 0;
}

void EntryHandle::close() {
  if (m_entry != nullptr) cfg_msgfree(m_entry);
  m_entry = nullptr;
}

AttributeWalk::~AttributeWalk() {
  closeCursor();
  closeEntry();
  std::free(m_name);
}

void AttributeWalk::closeCursor() {
  if (m_cursor != nullptr) cfg_ber_free(m_cursor);
  m_cursor = nullptr;
}

int AttributeWalk::next() {
  std::free(m_name);
  m_name = nullptr;
  return m_store.getNextAttribute(m_entry.get(), &m_name, m_cursor);
}

}  // namespace cfgmig
