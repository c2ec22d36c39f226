// WholeFile.h -- reads a file at one go.

#ifndef CFGMIG_LIBCFGSTORE_WHOLEFILE_H
#define CFGMIG_LIBCFGSTORE_WHOLEFILE_H

#include <string>

#include "FileSystem.h"

namespace cfgstore {

// What is in the open file. Throws FileError.
std::string readWhole(FileSystem& fileSystem, int file);

}  // namespace cfgstore

#endif  // CFGMIG_LIBCFGSTORE_WHOLEFILE_H
