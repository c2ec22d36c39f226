// DirectoryContent.h -- the content of a directory as a set of values, and an LDAP server in miniature that applies
// change records to it.

#ifndef CFGMIG_TESTS_TOOL_REPORT_DIRECTORYCONTENT_H
#define CFGMIG_TESTS_TOOL_REPORT_DIRECTORYCONTENT_H

#include <cstddef>
#include <map>
#include <set>
#include <string>

#include "Snapshot.h"

// By normal DN, then by name in lower case: the values.
using DirectoryContent = std::map<std::string, std::map<std::string, std::set<std::string>>>;

DirectoryContent contentOf(const cfgstore::Snapshot& snapshot);

// The same content as an LDIF file that any program can read, parents before children.
std::string ldifOf(const DirectoryContent& content);

struct Application {
  std::string error;         // why a record was refused; empty when all were applied
  std::size_t records = 0;   // that were applied
  std::size_t inTheAir = 0;  // entries that were added without a parent, as a comment above them told
};

// Applies LDIF change records, in their order and each wholly or not at all, as strictly as a server does: an entry to
// be added must not be there and its parent must; one that goes must have no children; a value that is added must not
// be there, one that is removed must; a replacement is of one value by one value; an attribute is named as it is
// changed.
Application applyChanges(const std::string& changeRecords, DirectoryContent& content);

#endif  // CFGMIG_TESTS_TOOL_REPORT_DIRECTORYCONTENT_H
