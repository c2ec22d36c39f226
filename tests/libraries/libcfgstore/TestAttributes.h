// TestAttributes.h -- the attributes of a file besides its content, for tests that they survive.

#ifndef CFGMIG_TESTS_LIBCFGSTORE_TESTATTRIBUTES_H
#define CFGMIG_TESTS_LIBCFGSTORE_TESTATTRIBUTES_H

#include <cstdint>
#include <string>
#include <vector>

namespace cfgstore::test {

// One entry of an access control list, as the system's headers number the tags.
struct ListEntry {
  std::uint16_t tag;
  std::uint16_t permissions;
  std::uint32_t id = 0xffffffff;
};
inline constexpr std::uint16_t kOwnerTag = 0x01;
inline constexpr std::uint16_t kUserTag = 0x02;
inline constexpr std::uint16_t kOwningGroupTag = 0x04;
inline constexpr std::uint16_t kGroupTag = 0x08;
inline constexpr std::uint16_t kMaskTag = 0x10;
inline constexpr std::uint16_t kOtherTag = 0x20;

// An access control list as the system keeps it.
std::string listOf(const std::vector<ListEntry>& entries);

// Sets an extended attribute. False where the file system has none of this kind, or this process may not set it.
bool setAttribute(const std::string& path, const char* name, const std::string& value);
// Its value; "(none)" if there is none.
std::string attribute(const std::string& path, const char* name);

// Gives the file a mode, an access control list, and attributes of each kind that this process may set. False when the
// file system has no access control lists or no attributes.
bool giveAttributes(const std::string& path);

// Owner, mode, access control list and all extended attributes but the mark of a file that is being written, readable.
std::string describeAttributes(const std::string& path);

}  // namespace cfgstore::test

#endif  // CFGMIG_TESTS_LIBCFGSTORE_TESTATTRIBUTES_H
