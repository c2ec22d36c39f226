#include "EntryWalk.h"

#include <type_traits>

#include "StoreResults.h"

namespace cfgstore {

static_assert(std::is_standard_layout_v<AttributeCursor>, "a pointer to the first member is a pointer to the cursor");

_CFGMessage** newCursor(_CFGMessage* entry) {
  auto* const cursor = new AttributeCursor{entry, 0};
  ++entry->owners;
  return &cursor->entry;
}

AttributeCursor& cursorBehind(_CFGMessage** cursor) { return *reinterpret_cast<AttributeCursor*>(cursor); }

char* nextName(AttributeCursor& cursor) {
  const std::string& names = cursor.entry->names;
  if (cursor.position >= names.size()) return nullptr;
  const std::string_view name(names.c_str() + cursor.position);
  char* const copy = newString(name);
  cursor.position += name.size() + 1;
  return copy;
}

}  // namespace cfgstore

void cfg_msgfree(_CFGMessage* entry) {
  if (entry != nullptr && --entry->owners == 0) delete entry;
}

void cfg_ber_free(_CFGMessage** cursor) {
  if (cursor == nullptr) return;
  cfg_msgfree(*cursor);
  delete &cfgstore::cursorBehind(cursor);
}
