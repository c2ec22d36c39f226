// FileNames.h -- names of files, taken apart and made.

#ifndef CFGMIG_LIBCFGSTORE_FILENAMES_H
#define CFGMIG_LIBCFGSTORE_FILENAMES_H

#include <ctime>
#include <string>
#include <string_view>

namespace cfgstore {

// The directory of `path`, "." if it names none; and the last part of it.
std::string directoryOf(const std::string& path);
std::string nameOf(const std::string& path);

// A name beside `path` that is set apart for one purpose of ours: "new", "old" or "copy".
std::string besideName(const std::string& path, std::string_view purpose);

// The n-th name, from 1, of a backup of `path` that is made at `time`.
std::string backupName(const std::string& path, std::time_t time, int number);

}  // namespace cfgstore

#endif  // CFGMIG_LIBCFGSTORE_FILENAMES_H
