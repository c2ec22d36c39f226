// FileError.h -- what goes wrong with files.

#ifndef CFGMIG_LIBCFGSTORE_FILEERROR_H
#define CFGMIG_LIBCFGSTORE_FILEERROR_H

#include <stdexcept>
#include <string>

namespace cfgstore {

// A step that failed, and why; a phrase to follow the path.
class FileError : public std::runtime_error {
 public:
  explicit FileError(const std::string& text) : std::runtime_error(text) {}
  FileError(const std::string& step, int error);
};

// Nothing was begun, because somebody else is at work on the file or was since it was read.
class FileInUse : public FileError {
 public:
  using FileError::FileError;
};

// What failed could not be undone: the new file is in place, and the old one, if there was one, could not be put back.
class FileNotRestored : public FileError {
 public:
  using FileError::FileError;
};

}  // namespace cfgstore

#endif  // CFGMIG_LIBCFGSTORE_FILEERROR_H
