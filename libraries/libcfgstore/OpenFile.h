// OpenFile.h -- owns a file descriptor of a FileSystem.

#ifndef CFGMIG_LIBCFGSTORE_OPENFILE_H
#define CFGMIG_LIBCFGSTORE_OPENFILE_H

#include "FileSystem.h"

namespace cfgstore {

// What close answers is not looked at: a file that was written has been brought to the disk and read back by then.
class OpenFile {
 public:
  OpenFile(FileSystem& fileSystem, int file) : m_fileSystem(&fileSystem), m_file(file) {}
  ~OpenFile() { reset(); }
  OpenFile(const OpenFile&) = delete;
  OpenFile& operator=(const OpenFile&) = delete;

  explicit operator bool() const { return m_file >= 0; }
  int get() const { return m_file; }
  void reset(int file = -1) {
    if (m_file >= 0) m_fileSystem->close(m_file);
    m_file = file;
  }

 private:
  FileSystem* m_fileSystem;
  int m_file;
};

}  // namespace cfgstore

#endif  // CFGMIG_LIBCFGSTORE_OPENFILE_H
