// AccessList.h -- POSIX access control lists, in the form in which the system keeps them with a file.
//
// An empty string is no list: the permission bits are then all there is. With a list, the group's permission bits are
// no longer those of the group but the mask, the most that anybody but the owner and the others may do.

#ifndef CFGMIG_LIBCFGSTORE_ACCESSLIST_H
#define CFGMIG_LIBCFGSTORE_ACCESSLIST_H

#include <sys/types.h>

#include <string>
#include <string_view>

namespace cfgstore {

inline constexpr const char* kAccessListAttribute = "system.posix_acl_access";

// Permission bits that, without a list, let nobody do more than `mode` and the list do. A list that is not understood
// leaves them to the owner only.
mode_t plainMode(mode_t mode, std::string_view accessList);

// The list with nobody allowed more than `permissions` allow everybody of that kind; users and groups that it names
// may do what both the group and the others may. Throws FileError for a list that is not understood.
std::string limitedList(std::string_view accessList, mode_t permissions);

// The permission bits that belong to the list: those of the owner, the mask and the others.
mode_t modeOfList(std::string_view accessList);

}  // namespace cfgstore

#endif  // CFGMIG_LIBCFGSTORE_ACCESSLIST_H
