// Resources.h -- the account of what the library is handed and what it takes: every string, list block, entry handle
// and attribute cursor of the fake store, and every block that the library allocates itself. Each must come back
// exactly once, but for the array block of a value list, which the library may leave; those are freed here at the end.
//
// Releases of strings and blocks are seen through the linker: the tests' build of the library calls __wrap_free where
// it says free (LibraryMemory.cpp).

#ifndef CFGMIG_TESTS_SUPPORT_RESOURCES_H
#define CFGMIG_TESTS_SUPPORT_RESOURCES_H

#include <cstddef>
#include <memory>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

#include "CfgUtils.h"

namespace fake {

enum class Kind { string, valueBlock, listBlock, libraryBlock };

// What stands behind a cursor: the names of the walk, taken when it began.
struct Cursor {
  _CFGMessage* entry = nullptr;  // the cursor is the address of this member
  std::vector<std::string> names;
  std::size_t next = 0;
  bool released = false;
};

class Resources {
 public:
  // `seesReleases`: whether the library under test was linked so that its calls of free are seen. When not, strings
  // are the library's business alone and list blocks are kept reachable for ever.
  explicit Resources(bool seesReleases);
  ~Resources();
  Resources(const Resources&) = delete;
  Resources& operator=(const Resources&) = delete;

  // Handing out.
  char* newString(std::string_view text);
  char** newList(const std::vector<std::string>& values, Kind blockKind);
  _CFGMessage* newEntry(std::string store, std::string dn);
  _CFGMessage** newCursor(_CFGMessage* entry, std::vector<std::string> names);

  // Taking back. Wrong releases become violations and are not carried out.
  void allocatedByLibrary(void* block);
  void freed(void* block);
  void releaseEntry(_CFGMessage* entry);
  void releaseCursor(_CFGMessage** cursor);

  // Use of handles; null (and a violation) for one that is not alive or does not belong to `store`.
  const std::string* dnOf(const _CFGMessage* entry, std::string_view store);
  Cursor* cursorOf(_CFGMessage** cursor, const _CFGMessage* entry);
  std::string describe(const _CFGMessage* entry) const;    // "old:CN=X", or "null"
  std::string describe(_CFGMessage* const* cursor) const;  // the entry's description

  // What is still out, but for value-list blocks: one line each. Empty when all came back.
  std::vector<std::string> outstanding() const;
  std::size_t outstandingValueBlocks() const;
  std::size_t outstandingLibraryBlocks() const;
  // What was done wrongly: releases of what was not out, use of what was released, wrong order.
  const std::vector<std::string>& violations() const { return m_violations; }

  // Frees what is out without complaint, for tests in which something is deliberately left.
  void forgive();

 private:
  char* copy(std::string_view text);
  void take(void* block, Kind kind);

  bool m_seesReleases;
  std::unordered_map<void*, Kind> m_blocks;
  std::unordered_map<const _CFGMessage*, std::unique_ptr<_CFGMessage>> m_entries;
  std::unordered_map<_CFGMessage* const*, std::unique_ptr<Cursor>> m_cursors;
  std::vector<std::string> m_violations;
};

}  // namespace fake

#endif  // CFGMIG_TESTS_SUPPORT_RESOURCES_H
