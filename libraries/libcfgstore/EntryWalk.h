// EntryWalk.h -- what is behind the entry handles and attribute cursors of CfgUtils.
//
// A handle holds the names of the entry's attributes as they were when it was looked up. Writes during a walk, the
// removal of the entry and the end of the store do not disturb it.

#ifndef CFGMIG_LIBCFGSTORE_ENTRYWALK_H
#define CFGMIG_LIBCFGSTORE_ENTRYWALK_H

#include <cstddef>
#include <string>
#include <string_view>

#include "CfgUtils.h"

// Belongs to its handle and to its cursors, and goes with the last of them.
struct _CFGMessage {
  static constexpr std::size_t kUsualNames = 500;  // bytes that most entries need

  std::string names;  // each followed by a zero byte
  std::size_t owners = 1;

  void addName(std::string_view name) {
    if (names.empty()) names.reserve(kUsualNames);
    names += name;
    names += '\0';
  }
};

namespace cfgstore {

// The cursor that callers see is a pointer to the first member.
struct AttributeCursor {
  _CFGMessage* entry;
  std::size_t position;  // in the names, of the next one
};

// A new cursor at the first name; shares the ownership of `entry`.
_CFGMessage** newCursor(_CFGMessage* entry);

// The cursor behind `cursor`.
AttributeCursor& cursorBehind(_CFGMessage** cursor);

// A heap copy of the next name, or null at the end. Moves the cursor on.
char* nextName(AttributeCursor& cursor);

}  // namespace cfgstore

#endif  // CFGMIG_LIBCFGSTORE_ENTRYWALK_H
