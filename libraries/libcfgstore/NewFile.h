// NewFile.h -- a file that is written beside the place where it is to appear, and moved there when it is whole.

#ifndef CFGMIG_LIBCFGSTORE_NEWFILE_H
#define CFGMIG_LIBCFGSTORE_NEWFILE_H

#include <span>
#include <stdexcept>
#include <string>
#include <string_view>

#include "FileSystem.h"

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

// The old file was replaced and could not be put back.
class FileNotRestored : public FileError {
 public:
  using FileError::FileError;
};

// Owns a file descriptor of a FileSystem.
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

// The directory of `path`, "." if it names none; and the last part of it.
std::string directoryOf(const std::string& path);
std::string nameOf(const std::string& path);

// A name beside `path` that is set apart for one purpose of ours.
std::string besideName(const std::string& path, std::string_view purpose);

// True when the file holds exactly the pieces, laid end to end. Throws FileError when it cannot be read.
bool holdsContent(FileSystem& fileSystem, int file, std::span<const std::string_view> pieces);

// While it is written, the file is locked and readable by its owner only. It is removed again unless it was put in
// place. All functions throw FileError.
class NewFile {
 public:
  // `path` is where the file is written: a name that nothing but this class uses. A file that a program which was
  // ended in the middle of its work has left there is removed; one that a program is working on is an error.
  NewFile(FileSystem& fileSystem, std::string path);
  ~NewFile();
  NewFile(const NewFile&) = delete;
  NewFile& operator=(const NewFile&) = delete;

  int file() const { return m_file.get(); }
  const std::string& path() const { return m_path; }

  void setOwner(uid_t owner, gid_t group);
  void setMode(mode_t mode);  // after setOwner, which may take bits away
  void write(std::span<const std::string_view> pieces);
  // Brings the file to the disk and reads it back.
  void check(std::span<const std::string_view> pieces);

  // Moves the file to its place. replace: whatever file is there. placeNew: only if nothing is there.
  void replace(const std::string& target);
  void placeNew(const std::string& target);

 private:
  void create();
  void removeLeftover();
  bool isStillAt(int file) const;
  void writeAll(std::string_view text);

  FileSystem& m_fileSystem;
  std::string m_path;
  OpenFile m_file;
  bool m_mine = false;  // the file at m_path is ours to remove
};

}  // namespace cfgstore

#endif  // CFGMIG_LIBCFGSTORE_NEWFILE_H
