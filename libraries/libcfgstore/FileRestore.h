// FileRestore.h -- takes back what a save has done: puts a backup in the place of a file, or removes a file that was
// made. By the rules of a save: at every moment the one file or the other is there, whole.

#ifndef CFGMIG_LIBCFGSTORE_FILERESTORE_H
#define CFGMIG_LIBCFGSTORE_FILERESTORE_H

#include <ctime>
#include <functional>
#include <string>
#include <string_view>

#include "ConfigStore.h"
#include "FileSystem.h"

namespace cfgstore {

// Says whether a file holds what the caller thinks it holds, given the whole of it. Called with the file locked.
using IsExpected = std::function<bool(std::string_view content)>;

// Makes `target` the same as `backup`, bit for bit: content, owner, mode, access control list and extended attributes.
// The backup stays where it is. A target that is the same already is not touched. With Backup::keep the file that is
// replaced becomes a backup itself. A target that is gone is made anew.
// Throws SaveRefused, with nothing done, when the content of `target` is not expected, when a program is writing it, or
// when the backup has changed while it was read; SaveError and RestoreError as a save does. what() names the file.
SaveResult restoreFile(const std::string& target, const std::string& backup, const IsExpected& isExpected, Backup keep,
                       FileSystem& fileSystem = FileSystem::real(), std::time_t now = std::time(nullptr));

// Removes `target`. A symbolic link is followed, and the file at its end removed. Throws as restoreFile does; a target
// that is gone is no error. Returns whether there was a file.
bool removeFile(const std::string& target, const IsExpected& isExpected, FileSystem& fileSystem = FileSystem::real());

// What both would be refused with before they write anything. Changes nothing. `backup` is empty for removeFile.
void checkRestore(const std::string& target, const std::string& backup, const IsExpected& isExpected,
                  FileSystem& fileSystem = FileSystem::real());

}  // namespace cfgstore

#endif  // CFGMIG_LIBCFGSTORE_FILERESTORE_H
