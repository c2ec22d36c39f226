#include "Resources.h"

#include <algorithm>
#include <cstdlib>
#include <cstring>
#include <new>

// Defined here: to the library an entry handle is opaque. It stays allocated until the end of the account, so that a
// second release is recognised.
struct _CFGMessage {
  std::string store;
  std::string dn;
  int cursors = 0;
  bool released = false;
};

namespace fake {

namespace {

// Never destroyed, so that the leak checker can reach the blocks to the very end; see Resources::Resources.
std::vector<void*>& keptBlocks() {
  static std::vector<void*>& blocks = *new std::vector<void*>;
  return blocks;
}

void* allocate(std::size_t size) {
  void* block = std::malloc(size);
  if (block == nullptr) {
    throw std::bad_alloc();
  }
  return block;
}

}  // namespace

Resources::Resources(bool seesReleases) : m_seesReleases(seesReleases) {}

Resources::~Resources() { forgive(); }

void Resources::forgive() {
  for (const auto& [block, kind] : m_blocks) {
    std::free(block);
  }
  m_blocks.clear();
}

void Resources::take(void* block, Kind kind) {
  if (m_seesReleases) {
    m_blocks.emplace(block, kind);
  } else if (kind == Kind::valueBlock) {
    keptBlocks().push_back(block);
  }
}

char* Resources::copy(std::string_view text) {
  char* result = static_cast<char*>(allocate(text.size() + 1));
  std::memcpy(result, text.data(), text.size());
  result[text.size()] = '\0';
  return result;
}

char* Resources::newString(std::string_view text) {
  char* result = copy(text);
  take(result, Kind::string);
  return result;
}

char** Resources::newList(const std::vector<std::string>& values, Kind blockKind) {
  char** list = static_cast<char**>(allocate((values.size() + 1) * sizeof(char*)));
  take(list, blockKind);
  char** slot = list;
  for (const std::string& value : values) {
    *slot++ = newString(value);
  }
  *slot = nullptr;
  return list;
}

_CFGMessage* Resources::newEntry(std::string store, std::string dn) {
  auto entry = std::make_unique<_CFGMessage>();
  entry->store = std::move(store);
  entry->dn = std::move(dn);
  _CFGMessage* handle = entry.get();
  m_entries.emplace(handle, std::move(entry));
  return handle;
}

_CFGMessage** Resources::newCursor(_CFGMessage* entry, std::vector<std::string> names) {
  auto cursor = std::make_unique<Cursor>();
  cursor->entry = entry;
  cursor->names = std::move(names);
  _CFGMessage** handle = &cursor->entry;
  m_cursors.emplace(handle, std::move(cursor));
  ++entry->cursors;
  return handle;
}

void Resources::allocatedByLibrary(void* block) {
  if (block != nullptr) {
    m_blocks.emplace(block, Kind::libraryBlock);
  }
}

void Resources::freed(void* block) {
  if (block == nullptr) {
    return;
  }
  if (m_blocks.erase(block) == 0) {
    m_violations.emplace_back("free of a block that is not out");
    return;
  }
  std::free(block);
}

void Resources::releaseEntry(_CFGMessage* entry) {
  if (entry == nullptr) {
    return;
  }
  const auto found = m_entries.find(entry);
  if (found == m_entries.end() || found->second->released) {
    m_violations.emplace_back("cfg_msgfree of a handle that is not out");
    return;
  }
  if (found->second->cursors != 0) {
    m_violations.push_back("cfg_msgfree before cfg_ber_free: " + describe(entry));
  }
  found->second->released = true;
}

void Resources::releaseCursor(_CFGMessage** cursor) {
  if (cursor == nullptr) {
    return;
  }
  const auto found = m_cursors.find(cursor);
  if (found == m_cursors.end() || found->second->released) {
    m_violations.emplace_back("cfg_ber_free of a cursor that is not out");
    return;
  }
  found->second->released = true;
  found->second->names.clear();
  --found->second->entry->cursors;
}

const std::string* Resources::dnOf(const _CFGMessage* entry, std::string_view store) {
  if (entry == nullptr) {
    return nullptr;
  }
  const auto found = m_entries.find(entry);
  if (found == m_entries.end() || found->second->released || found->second->store != store) {
    m_violations.emplace_back("use of an entry handle that is not out or of another store");
    return nullptr;
  }
  return &found->second->dn;
}

Cursor* Resources::cursorOf(_CFGMessage** cursor, const _CFGMessage* entry) {
  const auto found = m_cursors.find(cursor);
  if (found == m_cursors.end() || found->second->released || found->second->entry != entry) {
    m_violations.emplace_back("use of a cursor that is not out or of another entry");
    return nullptr;
  }
  return found->second.get();
}

std::string Resources::describe(const _CFGMessage* entry) const {
  const auto found = m_entries.find(entry);
  return found == m_entries.end() ? "null" : found->second->store + ":" + found->second->dn;
}

std::string Resources::describe(_CFGMessage* const* cursor) const {
  const auto found = m_cursors.find(cursor);
  return found == m_cursors.end() ? "null" : describe(found->second->entry);
}

std::vector<std::string> Resources::outstanding() const {
  std::vector<std::string> lines;
  for (const auto& [block, kind] : m_blocks) {
    if (kind == Kind::string) {
      lines.push_back(std::string("string ") + static_cast<const char*>(block));
    } else if (kind == Kind::listBlock) {
      lines.emplace_back("block of a DN list");
    } else if (kind == Kind::libraryBlock) {
      lines.emplace_back("block that the library allocated");
    }
  }
  for (const auto& [handle, entry] : m_entries) {
    if (!entry->released) {
      lines.push_back("entry handle " + describe(handle));
    }
  }
  for (const auto& [handle, cursor] : m_cursors) {
    if (!cursor->released) {
      lines.push_back("cursor of " + describe(handle));
    }
  }
  return lines;
}

std::size_t Resources::outstandingValueBlocks() const {
  return static_cast<std::size_t>(
      std::count_if(m_blocks.begin(), m_blocks.end(), [](const auto& out) { return out.second == Kind::valueBlock; }));
}

std::size_t Resources::outstandingLibraryBlocks() const {
  return static_cast<std::size_t>(std::count_if(m_blocks.begin(), m_blocks.end(),
                                                [](const auto& out) { return out.second == Kind::libraryBlock; }));
}

}  // namespace fake
